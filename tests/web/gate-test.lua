-- Tests of gate.lua with a simulated clock: lua5.4 tests/web/gate-test.lua web/server/gate.lua

local script = assert(loadfile(arg[1]))
local time, printed, open_requests

-- A request as lighttpd presents it; `fields` override the defaults.
local function new_request(fields)
  local request = {
    req_attr = {
      ["request.remote-addr"] = fields.from or "192.0.2.7",
      ["request.method"] = fields.method or "POST",
      ["uri.scheme"] = fields.plain and "http" or "https",
      ["uri.path"] = fields.path or "/api/command/login",
    },
    req_item = { http_status = 0 },
    req_header = {
      Authorization = fields.login and 'Digest nc=1, response="' .. (fields.proof or "a1") .. '"'
        or nil,
    },
    req_env = {},
    resp_header = {},
  }
  request.resp_body = {
    set = function(text)
      request.body = text
    end,
  }
  return request
end

local function run(request)
  lighty = {
    r = request,
    c = {
      time = function()
        return time
      end,
    },
    server = {
      irequests = function()
        local index = 0
        return function()
          index = index + 1
          return open_requests[index]
        end
      end,
    },
  }
  return script()
end

local function restart()
  gate, time, printed, open_requests = nil, 1000 * 60, {}, {}
end

function print(line)
  printed[#printed + 1] = line
end

local function finish(request, status)
  request.req_item.http_status = status
  run(request)
  for index, other in ipairs(open_requests) do
    if other == request then
      table.remove(open_requests, index)
    end
  end
end

-- Sends a request; `verdict` on its login, if it has one: "right", "wrong", or "stale". Returns the
-- status, 0 while the program runs, and the request.
local function ask(fields, verdict)
  local request = new_request(fields)
  local status = run(request)
  if status == 0 and fields.login and not request.req_header.Authorization then
    request.resp_header["WWW-Authenticate"] = "Digest nonce=1"
    status = 401
  elseif status == 0 and fields.login and verdict ~= "right" then
    local stale = verdict == "stale" and ", stale=true" or ""
    request.resp_header["WWW-Authenticate"] = "Digest nonce=1" .. stale
    status = 401
  elseif status == 0 then
    request.req_env.REMOTE_USER = fields.login and "anna" or nil
    request.req_attr["physical.path"] = "/program"
    status = run(request)
  end
  if status == 0 then
    open_requests[#open_requests + 1] = request
  else
    finish(request, status)
  end
  return status, request
end

local function guess(from, verdict)
  local status, request = ask({ from = from, login = true }, verdict or "wrong")
  if status == 0 then
    finish(request, 204)
  end
  return status
end

local function equal(found, wanted, what)
  if found ~= wanted then
    error((what or "") .. ": " .. tostring(found) .. " instead of " .. tostring(wanted), 2)
  end
end

local tests = {}

function tests.ten_failures_are_free_then_one_a_second()
  for n = 1, 10 do
    equal(guess(), 401, n)
  end
  for _ = 1, 3 do
    equal(guess(), 429)
    equal(guess(nil, "right"), 429)
    time = time + 1
    equal(guess(), 401)
  end
  time = time + 3
  for _ = 1, 3 do
    equal(guess(), 401)
  end
  equal(guess(), 429)
  time = time + 1000
  for n = 1, 10 do
    equal(guess(), 401, n)
  end
  equal(guess(), 429)
end

function tests.a_refusal_is_a_problem_and_not_logged()
  for _ = 1, 10 do
    guess()
  end
  local _, request = ask({ login = true }, "right")
  equal(request.body, '{"title":"Too Many Requests","status":429,"detail":"Too many wrong '
    .. 'passwords came from this address. Nothing was done; wait a few seconds and try again."}')
  equal(request.resp_header["Content-Type"], "application/problem+json")
  equal(request.resp_header["Retry-After"], "1")
  equal(request.resp_header["Cache-Control"], "no-store")
  equal(request.req_attr["uri.path"], "/api")
end

function tests.who_is_right_or_late_never_waits()
  for _ = 1, 9 do
    equal(guess(), 401)
  end
  for _ = 1, 100 do
    equal(guess(nil, "right"), 0)
    equal(guess(nil, "stale"), 401)
    equal(ask({}, nil), 0)
    finish(open_requests[1], 403)
  end
  equal(guess(), 401)
  equal(guess(), 429)
end

function tests.a_second_that_ends_meanwhile_is_no_advantage()
  local request = new_request({ login = true })
  equal(run(request), 0)
  time = time + 1
  request.req_attr["physical.path"] = "/program"
  equal(run(request), 0)
  for n = 1, 10 do
    equal(guess(), 401, n)
  end
  equal(guess(), 429)
end

function tests.logins_at_a_time_are_no_way_around()
  local begun = {}
  for n = 1, 13 do
    begun[n] = new_request({ login = true })
  end
  for n = 1, 10 do
    equal(run(begun[n]), 0)
  end
  for n = 11, 13 do
    equal(run(begun[n]), 429)
  end
end

function tests.another_address_is_somebody_else()
  for _ = 1, 20 do
    guess("192.0.2.7")
  end
  for _, other in ipairs({ "192.0.2.8", "2001:db8::1", "::1", "127.0.0.1" }) do
    equal(guess(other), 401, other)
  end
end

function tests.half_an_address_of_ipv6_is_one_owner()
  local same = { "2001:db8::1", "2001:db8:0:0:1::", "2001:db8::ffff:1:2:3", "2001:db8::2",
    "2001:db8:0:0:5:6:7:8" }
  for _, address in ipairs(same) do
    equal(guess(address), 401, address)
    equal(guess(address), 401, address)
  end
  for _, address in ipairs(same) do
    equal(guess(address), 429, address)
  end
  for _, other in ipairs({ "2001:db8:0:1::1", "2001:db9::1", "2001:db8:1::", "::2001:db8",
    "2001:db8:0:1:0:0:0:1" }) do
    equal(guess(other), 401, other)
  end
  for _ = 1, 10 do
    guess("192.0.2.9")
  end
  equal(guess("::ffff:192.0.2.9"), 429)
end

function tests.a_clock_that_is_set_forgets_nothing_too_soon()
  for _ = 1, 10 do
    guess()
  end
  time = time - 5000
  equal(guess(), 429)
  time = time + 1
  equal(guess(), 401)
  equal(guess(), 429)
end

function tests.an_address_is_remembered_until_1024_others_came()
  for others, status in pairs({ [1023] = 429, [1024] = 401 }) do
    restart()
    for _ = 1, 10 do
      guess("192.0.2.7")
    end
    for n = 1, others do
      guess("10.0." .. n // 256 .. "." .. n % 256)
    end
    equal(guess("192.0.2.7"), status, others)
  end
end

function tests.a_limited_number_of_addresses_is_remembered()
  for n = 1, 20000 do
    guess("10." .. n // 65536 .. "." .. n // 256 % 256 .. "." .. n % 256)
  end
  local kept = 0
  for _, addresses in ipairs({ gate.failures, gate.older }) do
    for _ in pairs(addresses) do
      kept = kept + 1
    end
  end
  assert(kept <= 1024, kept)
  -- The latest are kept, and so is an address that goes on guessing.
  for _ = 1, 10 do
    guess("192.0.2.7")
  end
  for n = 1, 5000 do
    guess("10.9." .. n // 256 .. "." .. n % 256)
    if n % 200 == 0 then
      equal(guess("192.0.2.7"), 429, n)
    end
  end
end

function tests.a_line_for_each_failure_but_sixty_a_minute()
  guess("192.0.2.7")
  equal(printed[1], "login: wrong user or password from 192.0.2.7")
  for n = 1, 200 do
    guess("198.51.100." .. n)
  end
  equal(#printed, 60)
  time = time + 59
  guess("192.0.2.8")
  equal(#printed, 60)
  time = time + 1
  guess("192.0.2.8")
  equal(#printed, 62)
  equal(printed[61], "login: 142 further lines were left out")
  equal(printed[62], "login: wrong user or password from 192.0.2.8")
  time = time + 60
  guess("192.0.2.8")
  equal(#printed, 63)
end

function tests.refusals_leave_a_line_a_minute()
  for _ = 1, 500 do
    guess()
  end
  equal(#printed, 11)
  equal(printed[11], "login: too many attempts from 192.0.2.7")
  time = time + 30
  for _ = 1, 500 do
    guess()
  end
  equal(#printed, 21)
  time = time + 30
  for _ = 1, 500 do
    guess()
  end
  equal(#printed, 32)
end

function tests.logins_that_are_right_leave_no_line()
  for _ = 1, 100 do
    guess(nil, "right")
    guess(nil, "stale")
  end
  equal(#printed, 0)
end

local function login_once(proof, plain, from)
  local status, request = ask({ login = true, plain = plain, proof = proof, from = from }, "right")
  if status == 0 then
    finish(request, 204)
  end
  return status
end

function tests.a_login_that_others_overhear_is_good_once()
  equal(login_once("aa", true), 0)
  equal(login_once("aa", true), 401)
  equal(login_once("ab", true), 0)
  equal(login_once("aa", true), 401)
  equal(printed[1], "login: a replayed login from 192.0.2.7")
  -- They are not failures, and may be repeated where nobody can overhear them.
  for _ = 1, 20 do
    equal(login_once("aa", true), 401)
    equal(login_once("ac", false), 0)
  end
  for _, own in ipairs({ "127.0.0.1", "127.9.9.9", "::1" }) do
    equal(login_once("ad", true, own), 0)
    equal(login_once("ad", true, own), 0)
  end
  for _, other in ipairs({ "128.0.0.1", "12.7.0.0", "1.127.0.0", "2001:db8::1", "::1:1" }) do
    equal(login_once(other:gsub("%X", "f"), true, other), 0)
    equal(login_once(other:gsub("%X", "f"), true, other), 401)
  end
  equal(login_once("ad", true), 0)
end

function tests.a_login_that_failed_is_not_used()
  equal(ask({ login = true, plain = true, proof = "aa" }, "wrong"), 401)
  equal(login_once("aa", true), 0)
end

function tests.a_login_is_remembered_for_ten_minutes_whenever_it_was()
  for offset = 0, 1200, 30 do
    restart()
    login_once("aa", true)
    for seconds = 30, offset, 30 do
      time = time + 30
      login_once(string.format("%x", seconds), true)
    end
    login_once("abc", true)
    for seconds = 30, 600, 30 do
      time = time + 30
      login_once(string.format("f%x", seconds), true)
    end
    equal(login_once("abc", true), 401, offset)
  end
end

function tests.a_login_that_nobody_asked_for_is_not_used()
  -- As on a server without passwords, where anyone could fill the memory with them.
  local request = new_request({ login = true, plain = true, proof = "aa" })
  run(request)
  request.req_attr["physical.path"] = "/program"
  run(request)
  equal(login_once("aa", true), 0)
end

function tests.logins_are_remembered_as_long_as_a_challenge_lives()
  equal(login_once("aa", true), 0)
  for _ = 1, 30 do
    time = time + 20
    equal(login_once(string.format("%x", time), true), 0)
  end
  equal(login_once("aa", true), 401)
  time = time + 2000
  equal(login_once("ab", true), 0)
  equal(login_once("aa", true), 0)
  time = time - 3000
  equal(login_once("ac", true), 0)
  equal(login_once("ac", true), 401)
  equal(login_once("aa", true), 401)
end

function tests.a_limited_number_of_logins_is_remembered()
  for n = 1, 45000 do
    equal(login_once(string.format("%x", n), true), 0)
  end
  local kept = 0
  for _, logins in ipairs({ gate.used, gate.used_before }) do
    for _ in pairs(logins) do
      kept = kept + 1
    end
  end
  equal(kept, 15000)
  equal(login_once(string.format("%x", 35001), true), 401)
end

-- Fills all places of one kind from as many addresses as needed; returns the number of places.
local function fill(fields, each)
  local count = 0
  while true do
    local from = "10.0.0." .. count // each
    local request = { method = fields.method, path = fields.path, login = fields.login }
    request.from = from
    if ask(request, "right") ~= 0 then
      return count
    end
    count = count + 1
    assert(count < 200)
  end
end

local REPORT = { method = "GET", path = "/api/alarms" }

function tests.places_are_limited_for_each_kind()
  for _, row in ipairs({
    { 96, 72, REPORT },
    { 8, 4, { path = "/api/command/run" } },
    { 16, 16, { path = "/api/command/run", login = true } },
    { 8, 8, { path = "/api/command/abort", login = true } },
  }) do
    equal(fill(row[3], row[2]), row[1], row[3].path)
  end
  equal(#printed, 0)
end

function tests.one_address_leaves_places_for_others()
  for _ = 1, 72 do
    equal(ask(REPORT), 0)
  end
  local status, request = ask(REPORT)
  equal(status, 429)
  equal(request.body, '{"title":"Too Many Requests","status":429,"detail":"The web server is busy '
    .. 'with other requests. Nothing was done; try again."}')
  equal(ask({ method = "HEAD", path = "/api/status", from = "192.0.2.8" }), 0)
  finish(open_requests[1], 200)
  equal(ask(REPORT), 0)
  equal(ask(REPORT), 429)
end

function tests.what_has_a_body_takes_no_place_of_a_report()
  for _ = 1, 4 do
    equal(ask({ path = "/api/alarms" }), 0)
  end
  equal(ask({ path = "/api/alarms" }), 429)
  equal(ask({ path = "/api/command", method = "GET" }), 429)
  equal(ask({ path = "/api/command/abort" }), 429)
  equal(ask({ path = "/api/command/x", method = "GET" }), 429)
  equal(ask({ path = "/api/commands", method = "GET" }), 0)
  equal(ask({ path = "/api/alarms", method = "HEAD" }), 0)
  equal(ask(REPORT), 0)
end

function tests.places_of_browsers_that_went_away_are_found()
  for round = 1, 3 do
    for _ = 1, 72 do
      equal(ask(REPORT), 0, round)
    end
    equal(ask(REPORT), 429)
    -- The script is not notified. One request is left, one has been answered but not yet reported.
    open_requests = { open_requests[1], open_requests[2] }
    open_requests[2].req_item.http_status = 200
    for _ = 1, 71 do
      equal(ask(REPORT), 0, round)
    end
    equal(ask(REPORT), 429)
    open_requests = {}
  end
end

function tests.who_was_answered_is_forgotten()
  for n = 1, 100 do
    local _, request = ask({ method = "GET", path = "/api/alarms", from = "10.0.0." .. n })
    finish(request, 200)
  end
  equal(gate.taken.reports.all, 0)
  for owner in pairs(gate.taken.reports) do
    equal(owner, "all")
  end
end

function tests.guesses_are_none_of_a_report()
  for _ = 1, 11 do
    guess()
  end
  equal(ask({ method = "GET", path = "/api/alarms", login = true }, "right"), 0)
end

function tests.answers_never_make_more_places()
  for _ = 1, 10 do
    local _, request = ask(REPORT)
    gate.taken = {}
    finish(request, 200)
  end
  equal(fill(REPORT, 72), 96)
end

local names = {}
for name in pairs(tests) do
  names[#names + 1] = name
end
table.sort(names)
for _, name in ipairs(names) do
  restart()
  local good, fault = xpcall(tests[name], debug.traceback)
  if not good then
    io.stderr:write(name, ": ", fault, "\n")
    os.exit(1)
  end
end
io.write(#names, " passed\n")
