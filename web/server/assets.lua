-- Only existing files may be cached for a year, not errors such as 404.
local status = lighty.r.req_item.http_status
if status ~= 200 and status ~= 206 and status ~= 304 then
  lighty.r.resp_header["Cache-Control"] = "no-store"
end
return 0
