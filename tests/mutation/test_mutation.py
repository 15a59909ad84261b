"""Tests of the mutator: which changes it finds in small texts, and what the lists explain."""

import pytest

from areas import AREAS, ROOT
from explained import Explained
from mutants import File, changed_text, find_mutants

ROWS = "constexpr Row cRows[] = {\n    {1, 1},\n    {2, 2},\n};\n"


def body(*statements: str) -> str:
    lines = [f"  {statement}\n" for statement in statements]
    return "int f(int a, bool b) {\n" + "".join(lines) + "}\n"


def changes(text: str, kind: str | None = None) -> list[str]:
    """The first changed line of each mutant of a file."""
    found = []
    for mutant in File("Source/F.cpp", text).mutants():
        if kind in (None, mutant.kind):
            old, new = text.splitlines(), mutant.applied(text).splitlines()
            found += [b.strip() for a, b in zip(old, new) if a != b][:1]
    return found


@pytest.mark.parametrize(
    ("statement", "expected"),
    [
        ("int x = 7;", ["int x = 6;", "int x = 8;"]),
        ("int x = 0x10;", ["int x = 15;", "int x = 17;"]),
        ("int x = 0700;", ["int x = 0677;", "int x = 0701;"]),
        ("int x = 1'000'000;", ["int x = 1000001;", "int x = 999999;"]),
        ("int x = -1;", ["int x = -0;", "int x = -2;", "int x = 1;"]),
        ("double x = 1.5;", ["double x = 0.5;", "double x = 2.5;"]),
        ("bool x = true;", ["bool x = false;"]),
        ("char x = 'a';", ["char x = 'b';"]),
        ("char x = '\\0';", ["char x = '\\1';"]),
        ("bool x = !b;", ["bool x = b;"]),
        ("bool x = a == x;", ["bool x = a != x;"]),
        ("bool x = a < x;", ["bool x = a <= x;", "bool x = a >= x;"]),
        ("bool x = a >= x;", ["bool x = a < x;", "bool x = a > x;"]),
        ("int x = a + b;", ["int x = a - b;"]),
        ("int x = a * b;", ["int x = a / b;"]),
        ("int x = a & b;", ["int x = a | b;"]),
        ("int x = a++;", ["int x = a--;"]),
    ],
)
def test_tokens(statement: str, expected: list[str]) -> None:
    assert sorted(changes(body(statement))) == sorted(expected)


@pytest.mark.parametrize(
    "text",
    [
        "// a comment: 1 < 2\n",
        "/* 1 + 1 */\n",
        "#include <one>\n#define TWO \\\n  2\n",
        "static_assert(2 < 3);\n",
        "template <int size>\nvoid f(int (&rows)[size]);\n",
        body("std::vector<int> x(a);"),
        body("const int* x = &a;", "int& y = *x;", "T&& z = g<int>();"),
    ],
)
def test_what_is_left_alone(text: str) -> None:
    assert changes(text) == []


@pytest.mark.parametrize(
    ("literal", "expected"),
    [
        ('"Ready"', '"Readz"'),
        ('"Fizz"', '"Fiza"'),
        ('"9"', '"0"'),
        ('"-"', '"x"'),
        ('""', '"x"'),
        ('"%d"', '"x%d"'),
        ('"Run %ds"', '"Run %dt"'),
        ('"%u.%u"', '"%ux%u"'),
        ('"a\\n"', '"b\\n"'),
    ],
)
def test_texts(literal: str, expected: str) -> None:
    assert changed_text(literal) == expected


def test_raw_texts_are_changed_inside() -> None:
    statement = 'g(R"({"a": [1, true],\n "b": ""})");'
    raw = [m.applied(body(statement)) for m in File("web/F.cpp", body(statement)).mutants()]
    assert [text for text in raw if "R" in text] == [
        body(statement.replace('"a"', '"b"')),
        body(statement.replace("1", "0")),
        body(statement.replace("1", "2")),
        body(statement.replace('"b"', '"c"')),
        body(statement.replace('""', '"x"')),
    ]


def test_end_of_line_is_taken_from_a_text() -> None:
    assert changes(body('puts("a\\n");'), "text") == ['puts("a");', 'puts("b\\n");']


def test_operands_are_left_out_one_by_one() -> None:
    assert changes(body("bool x = a && b && g(1 || 2);"), "operand") == [
        "bool x = b && g(1 || 2);",
        "bool x = a && g(1 || 2);",
        "bool x = a && b;",
        "bool x = a && b && g(2);",
        "bool x = a && b && g(1);",
    ]


def test_operands_are_left_out_by_their_precedence() -> None:
    assert changes(body("return a && b || x ? y : z;"), "operand") == [
        "return b || x ? y : z;",
        "return x ? y : z;",
        "return a || x ? y : z;",
        "return a && b ? y : z;",
    ]


@pytest.mark.parametrize(
    ("statement", "expected"),
    [
        ("if (a < 2) {}", ["if (false) {}", "if (true) {}"]),
        ("if (int* x = g()) {}", ["if (int* x = g(); false) {}", "if (int* x = g(); true) {}"]),
        ("while (b) {}", ["while (false) {}"]),
        ("for (int i = 0; i < a; ++i) {}", ["for (int i = 0; false; ++i) {}"]),
        ("for (int i : g(a)) {}", []),
        ("a = b ? g(1) : 2;", ["a = false ? g(1) : 2;", "a = true ? g(1) : 2;"]),
        ("return {b && a ? 1 : 2};", ["return {false ? 1 : 2};", "return {true ? 1 : 2};"]),
    ],
)
def test_conditions(statement: str, expected: list[str]) -> None:
    assert changes(body(statement), "condition") == expected


@pytest.mark.parametrize(
    "statement",
    ["a = 1;", "g(a);", "x.y<z>(a);", "(*a).b();", "++a;", "delete a;", "std::fill(a, a, b);"],
)
def test_statements_are_left_out(statement: str) -> None:
    assert changes(body(statement), "statement") == [";"]


@pytest.mark.parametrize(
    "statement",
    [
        "return 0;",
        "int x = 1;",
        "const auto x = g(a);",
        "unsigned long x = 0;",
        "std::unique_ptr<int[]> x(new int[2]);",
        "Value x(a);",
        "using A = int;",
    ],
)
def test_declarations_and_the_last_return_stay(statement: str) -> None:
    assert changes(body(statement), "statement") == []


def test_statements_inside_of_others_are_left_out() -> None:
    text = body("for (;;) {", "if (b) break;", "else {", "return 1;", "}", "}", "return 2;")
    assert changes(text, "statement") == ["if (b) ;", ";"]
    text = body("switch (a) {", "case 1:", "g();", "break;", "default:", "break;", "}")
    assert changes(text, "statement") == [";", ";", ";"]


def test_rows_are_exchanged() -> None:
    text = 'constexpr Row cRows[] = {\n    {1, "a"}, {2, "b"},\n    {2, "b"},\n};\n'
    assert changes(text, "row") == ['{2, "b"}, {1, "a"},']


def test_arguments_of_calls_are_exchanged() -> None:
    assert changes(body("g(a, h(1, 2));"), "argument") == ["g(h(1, 2), a);", "g(a, h(2, 1));"]
    assert changes("int f(int a, int b);\n", "argument") == []
    assert changes(body("a = std::min(a, 2);"), "argument") == []


def test_enumerators_of_all_files_are_exchanged() -> None:
    header = "enum class eSpan {\n  eOne,  // eNot\n  eTwo = 5,\n  eThree,\n};\n"
    code = body("return g(eSpan::eOne, eSpan::eThree);")
    names = [m for m in find_mutants({"H.h": header, "C.cpp": code}) if m.kind == "name"]
    assert [mutant.applied(code) for mutant in names] == [
        body("return g(eSpan::eTwo, eSpan::eThree);"),
        body("return g(eSpan::eOne, eSpan::eTwo);"),
    ]


def test_constants_of_one_type_are_exchanged() -> None:
    text = "constexpr int cOne = 1;\nconstexpr int cTwo = 2;\nconstexpr long cOther = 3;\n"
    text += body("g(cOne, cOther);")
    assert changes(text, "name") == ["g(cTwo, cOther);"]


def test_a_mutant_is_known_by_its_text() -> None:
    text = body("g();", "a = 1;")
    moved = "// Another line.\n\n" + text.replace("  ", "    ")
    one, other = (
        [str(mutant) for mutant in File("Source/F.cpp", content).mutants()]
        for content in (text, moved)
    )
    assert one == other
    assert one[-1] == "Source/F.cpp: int f(int a, bool b) {\n g();\n-a = 1;\n+a = 2;"


def test_list_explains_by_text_and_knows_what_is_stale() -> None:
    mutants = File("Source/F.cpp", body("g();", "a = 1;")).mutants()
    text = f"Why.\n\n{mutants[0]}\n\nSanitizers: why.\n\n{mutants[1]}\n"
    explained = Explained(text)
    assert [explained.entry(m) is not None for m in mutants] == [True, True, False, False]
    assert [explained.needs_sanitizers(m) for m in mutants] == [False, True, False, False]
    assert explained.stale(mutants) == []
    assert explained.stale(mutants[1:]) == [str(mutants[0])]
    assert explained.stale(File("Source/G.cpp", ROWS).mutants()) == []
    with pytest.raises(ValueError, match="twice"):
        Explained(text + f"\n{mutants[0]}\n")


def test_list_explains_by_pattern() -> None:
    mutants = File("Source/F.cpp", ROWS).mutants()
    function = "Source/F.cpp: constexpr Row cRows[] = {"
    explained = Explained(f"Why.\n\n{function}\n~row: *\n~integer: *, {{1 -> *}}}},\n")
    order = [m for m in mutants if explained.entry(m) == f"{function}\n~row: *"]
    second = [m for m in mutants if explained.entry(m) == f"{function}\n~integer: *, {{1 -> *}}}},"]
    assert [m.kind for m in order] == ["row"]
    assert [m.marked for m in second] == [
        "integer: {1, {1 -> 0}},",
        "integer: {1, {1 -> 2}},",
    ]
    assert explained.stale(second) == [f"{function}\n~row: *"]
    assert explained.entry(File("Source/G.cpp", ROWS).mutants()[0]) is None


@pytest.mark.parametrize("area", AREAS, ids=lambda area: area.name)
def test_areas_are_of_this_tree(area) -> None:
    sources = area.sources()
    assert {name.endswith(".cpp") for name in sources} == {True, False}
    assert all((ROOT / main).is_file() and main not in sources for main in area.mains)
    explained = Explained(area.explanations.read_text())
    assert {entry.partition(":")[0] for entry in explained.reasons} <= set(sources)
    assert all(reason.rstrip().endswith(".") for reason in explained.reasons.values())
