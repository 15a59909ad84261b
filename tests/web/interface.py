"""The machine-readable description of the interface, and checks of requests and answers."""

import json
import re
from collections.abc import Iterator, Mapping
from functools import cache
from typing import Any

import jsonschema
from programs import ROOT, load_schema

DESCRIPTION = ROOT / "docs" / "openapi.json"
# Headers that HTTP and the web server may add to any answer.
EVERYWHERE = {
    "accept-ranges", "connection", "content-length", "content-security-policy", "content-type",
    "date", "etag", "last-modified", "referrer-policy", "transfer-encoding",
    "x-content-type-options", "x-frame-options",
}  # fmt: skip


@cache
def description() -> Any:
    return json.loads(DESCRIPTION.read_text(encoding="utf-8"))


def inlined(value: Any) -> Any:
    """Replaces references by what they refer to, except schema files."""
    if isinstance(value, dict):
        reference = value.get("$ref", "")
        if reference.startswith("#/"):
            found = description()
            for key in reference[2:].split("/"):
                found = found[key]
            return inlined(found)
        return {key: inlined(inner) for key, inner in value.items()}
    return [inlined(inner) for inner in value] if isinstance(value, list) else value


@cache
def paths() -> list[tuple[re.Pattern[str], dict[str, Any]]]:
    found = []
    for template, item in description()["paths"].items():
        pattern = re.sub(r"\\{number\\}", "[^/]+", re.escape(template))
        found.append((re.compile(pattern), inlined(item)))
    return found


def faults_in(schema: Any, document: Any) -> Iterator[str]:
    """The faults in a document; schema files use another draft than the description."""
    if "allOf" in schema:
        for part in schema["allOf"]:
            yield from faults_in(part, document)
        return
    name = re.fullmatch(r"schemas/([a-z-]+)\.schema\.json", schema.get("$ref", ""))
    validator = (
        jsonschema.Draft4Validator(load_schema(name[1]))
        if name
        else jsonschema.Draft202012Validator(schema)
    )
    yield from (error.message for error in validator.iter_errors(document))


def operation_of(method: str, path: str) -> tuple[bool, Any]:
    """Whether the path is described, and its operation for the method; None if there is none."""
    for pattern, item in paths():
        if pattern.fullmatch(path):
            return True, item.get(method.lower())
    return False, None


def response_to(method: str, path: str, status: int) -> Iterator[Any]:
    """The descriptions that may apply to such an answer."""
    is_known, operation = operation_of(method, path)
    responses = inlined(description()["components"]["responses"])
    if operation and str(status) in operation["responses"]:
        yield operation["responses"][str(status)]
    of_the_web_server = {
        301: "ToHttps",
        400: "NoPlainRequest",
        403: "OtherName",
        429: "TooManyRequests",
        401: "Unauthorized" if path.startswith("/api/command") else None,
        404: None if is_known else "NotFound",
        405: None if operation else "MethodNotAllowed",
        500: "GatewayEnded",
    }
    if name := of_the_web_server.get(status):
        yield responses[name]


def faults_of_headers(described: Mapping[str, Any], headers: Mapping[str, str]) -> Iterator[str]:
    told = {name.lower(): value for name, value in headers.items()}
    known = {name.lower(): header for name, header in described.items()}
    for name in sorted(set(told) - set(known) - EVERYWHERE):
        yield f"header {name}: not described"
    for name, header in known.items():
        if name in told:
            for fault in faults_in(header["schema"], told[name]):
                yield f"header {name}: {fault}"
        elif header.get("required"):
            yield f"header {name}: missing"


def faults_of_content(described: Mapping[str, Any], kind: str, body: bytes) -> Iterator[str]:
    if not body:
        # An answer to HEAD, or to a client that has disconnected.
        if described:
            yield "no document"
        return
    if kind not in described:
        yield f"a document of {kind or 'no type'}: not described"
        return
    is_json = kind.endswith("json")
    yield from faults_in(described[kind]["schema"], json.loads(body) if is_json else body.decode())


def faults_of_answer(
    method: str, path: str, status: int, headers: Mapping[str, str], body: bytes
) -> list[str]:
    """The parts of an answer that are missing or not described."""
    faults = ["not described"]
    for response in response_to(method, path, status):
        faults = [*faults_of_headers(response.get("headers", {}), headers)]
        if method != "HEAD":
            kind = headers.get("Content-Type") or ""
            faults += faults_of_content(response.get("content", {}), kind, body)
        if not faults:
            break
    return faults


def faults_of_request(
    method: str, path: str, headers: Mapping[str, str], body: bytes | None
) -> list[str]:
    """The parts of a successful request that are missing or not described."""
    _, operation = operation_of(method, path)
    if operation is None:
        return ["not described"]
    faults = []
    told = {name.lower(): value for name, value in headers.items()}
    for parameter in operation.get("parameters", []):
        if parameter["in"] == "header":
            value = told.get(parameter["name"].lower())
            faults += faults_in(parameter["schema"], value)
    content = operation.get("requestBody", {}).get("content")
    if content is None:
        return faults + (["a body"] if body else [])
    kind = told.get("content-type", "").partition(";")[0].strip().lower()
    return [*faults, *faults_of_content(content, kind, body or b"")]
