-- Limits how many requests the gateway handles at a time, and how many passwords are tried per second.
-- lighttpd runs this three times per request: before it checks the password, before it starts the
-- program, and when there is an answer. All other requests wait meanwhile: nothing here may take long.

local request = lighty.r
local attributes, item = request.req_attr, request.req_item
-- Variables for the program, which no client can set. Written in two parts: if mod_magnet finds the whole
-- word in a script, it also fills in all the other variables, and too early.
local variables = request["req" .. "_env"]
local MARK = "GC_WEB_GATE"

-- Slots: how many programs at a time, in all and for one address. A request takes a slot only once its
-- body is complete; aborts have slots of their own.
local PLACES = {
  reports = { all = 96, each = 72 },
  strangers = { all = 8, each = 4 },
  users = { all = 16, each = 16 },
  aborts = { all = 8, each = 8 },
}
local FREE_FAILURES = 10 -- per address; one is forgotten every second
local ADDRESSES = 512 -- remembered in each of two generations
local LINES = 60 -- in the error log, per minute
local LIFE = 600 -- seconds for which lighttpd accepts a challenge
local LOGINS = 10000 -- remembered in each of two generations

-- Kept between requests, as long as the server runs.
local state = _G.gate
if not state then
  state = { taken = {}, failures = {}, older = {}, known = 0, minute = 0, lines = 0, unsaid = 0,
    used = {}, used_before = {}, uses = 0, since = 0 }
  _G.gate = state
end

-- The owner of an address. The owner of an IPv6 address has all addresses with the same first half.
local function owner_of(address)
  local mapped = address:match("^::ffff:(%d+%.%d+%.%d+%.%d+)$")
  if mapped or not address:find(":", 1, true) then
    return mapped or address
  end
  local head, tail = address:match("^(.-)::(.*)$")
  local groups = {}
  for group in (head or address):gmatch("%x+") do
    groups[#groups + 1] = group
  end
  if head then
    local _, colons = tail:gsub(":", ":")
    while #groups + colons + 1 < 8 do
      groups[#groups + 1] = "0"
    end
    for group in tail:gmatch("%x+") do
      groups[#groups + 1] = group
    end
  end
  return table.concat(groups, ":", 1, 4)
end

local function refuse(detail)
  local body = '{"title":"Too Many Requests","status":429,"detail":"' .. detail .. '"}'
  request.resp_header["Content-Type"] = "application/problem+json"
  request.resp_header["Cache-Control"] = "no-store"
  request.resp_header["Retry-After"] = "1"
  request.resp_body.set(body)
  -- A line for each in the access log would fill the disk: the log omits this path.
  attributes["uri.path"] = "/api"
  return 429
end

-- Writes a line, unless there are too many: the number of omitted lines follows in a later minute.
local function log(line)
  local minute = lighty.c.time() // 60
  if minute ~= state.minute then
    if state.unsaid > 0 then
      print("login: " .. state.unsaid .. " further lines were left out")
    end
    state.minute, state.lines, state.unsaid = minute, 0, 0
  end
  if state.lines < LINES then
    state.lines = state.lines + 1
    print("login: " .. line)
  else
    state.unsaid = state.unsaid + 1
  end
end

-- Failures that have not been forgotten yet, as {count =, time =, told =}; nil if there are none.
local function failures_of(owner)
  local entry = state.failures[owner] or state.older[owner]
  if not entry then
    return nil
  end
  local now = lighty.c.time()
  -- If the clock was set back, nothing is forgotten.
  entry.count = math.max(0, entry.count - math.max(0, now - entry.time))
  entry.time = now
  return entry
end

-- With more addresses than fit, the oldest are dropped and start afresh.
local function remember(owner, entry)
  if state.failures[owner] then
    return
  end
  if state.known >= ADDRESSES then
    state.older, state.failures, state.known = state.failures, {}, 0
  end
  state.failures[owner] = entry
  state.known = state.known + 1
end

-- The digest response of this request if others could have intercepted it; otherwise nil.
local function proof()
  local address = attributes["request.remote-addr"]
  local isPrivate = attributes["uri.scheme"] == "https" or address:find("^127%.") or address == "::1"
  return not isPrivate and request.req_header["Authorization"]:match('response="?(%x+)') or nil
end

-- Remembers a digest response that was accepted. Only users who know the password can add one.
local function use(proven)
  local age = lighty.c.time() - state.since
  if age > LIFE or state.uses >= LOGINS then
    state.used_before, state.used, state.uses = age > 2 * LIFE and {} or state.used, {}, 0
    state.since = lighty.c.time()
  end
  state.used[proven] = true
  state.uses = state.uses + 1
end

-- A password counts as a failure until it has been accepted, so that parallel attempts gain nothing.
local function begin_login(owner)
  local entry = failures_of(owner) or { count = 0, time = lighty.c.time(), told = -1 }
  remember(owner, entry)
  if entry.count >= FREE_FAILURES then
    local minute = lighty.c.time() // 60
    if entry.told ~= minute then
      entry.told = minute
      log("too many attempts from " .. attributes["request.remote-addr"])
    end
    return refuse("Too many wrong passwords came from this address. Nothing was done; wait a "
      .. "few seconds and try again.")
  end
  local proven = proof()
  if proven and (state.used[proven] or state.used_before[proven]) then
    -- Intercepted and sent again: handled as if there were no login.
    request.req_header["Authorization"] = nil
    log("a replayed login from " .. attributes["request.remote-addr"])
    return 0
  end
  entry.count = entry.count + 1
  variables[MARK] = "login"
  return 0
end

local function forgive(owner)
  local entry = failures_of(owner)
  if entry then
    entry.count = entry.count - 1
  end
end

-- The kind of slot that a request takes.
local function place_of(path)
  local isCommand = path == "/api/command" or path:sub(1, 13) == "/api/command/"
  if isCommand and variables["REMOTE_USER"] then
    return path == "/api/command/abort" and "aborts" or "users"
  end
  local method = attributes["request.method"]
  return not isCommand and (method == "GET" or method == "HEAD") and "reports" or "strangers"
end

local function count(place)
  local of = state.taken[place] or { all = 0 }
  state.taken[place] = of
  return of
end

local function take(place, owner, change)
  local of = count(place)
  of.all = math.max(0, of.all + change)
  local left = (of[owner] or 0) + change
  of[owner] = left > 0 and left or nil
end

local function is_full(place, owner)
  local of, limit = count(place), PLACES[place]
  return of.all >= limit.all or (of[owner] or 0) >= limit.each
end

-- Counts the requests in progress. Requests whose browsers disconnected were never reported as answered;
-- they are not among these.
local function count_anew()
  state.taken = {}
  for other in lighty.server.irequests() do
    local place = other["req" .. "_env"][MARK]
    if PLACES[place] and other.req_item.http_status == 0 then
      take(place, owner_of(other.req_attr["request.remote-addr"]), 1)
    end
  end
end

local function come_in(owner)
  local place = place_of(attributes["uri.path"])
  if is_full(place, owner) then
    count_anew()
    if is_full(place, owner) then
      return refuse("The web server is busy with other requests. Nothing was done; try again.")
    end
  end
  take(place, owner, 1)
  variables[MARK] = place
  return 0
end

local function answered(owner)
  local mark = variables[MARK]
  if PLACES[mark] then
    take(mark, owner, -1)
  elseif mark == "login" then
    local challenge = request.resp_header["WWW-Authenticate"]
    if challenge and challenge:find("stale=true", 1, true) then
      -- The password was not checked: the challenge had expired.
      forgive(owner)
    else
      log("wrong user or password from " .. attributes["request.remote-addr"])
    end
  end
  return 0
end

local owner = owner_of(attributes["request.remote-addr"])
if item.http_status ~= 0 then
  return answered(owner)
end
if (attributes["physical.path"] or "") == "" then
  local isLogin = attributes["uri.path"]:find("^/api/command")
    and request.req_header["Authorization"]
  return isLogin and begin_login(owner) or 0
end
if variables[MARK] == "login" then
  forgive(owner)
  variables[MARK] = "in"
  local proven = variables["REMOTE_USER"] and proof()
  if proven then
    use(proven)
  end
end
return come_in(owner)
