-- Of what is kept for a year, only what is there: an answer that there is no such file is not.
local status = lighty.r.req_item.http_status
if status ~= 200 and status ~= 206 and status ~= 304 then
  lighty.r.resp_header["Cache-Control"] = "no-store"
end
return 0
