-- wrk script of scripts/serve-bench: random papers and neighbourhoods of
-- the DIDs listed in the file DIDS (one a line), or with MIX=structure the
-- pages of the field's structure (the overview, the cluster map, one of its
-- first CLUSTERS clusters, the impact of one of AUTHORS authors, a quarter
-- each), until each thread has had its share of REQUESTS answers. A thread that has had them stops and
-- writes a file into DONE_DIR: wrk itself would wait out its duration, so
-- scripts/serve-bench interrupts it once every thread is done.
local dids = {}
local total = tonumber(os.getenv("REQUESTS"))
local threads = tonumber(os.getenv("THREADS"))
local answered = 0

function init(args)
  math.randomseed(os.time() + tonumber(tostring({}):match("0x(%x+)"), 16))
  for line in io.lines(os.getenv("DIDS")) do
    dids[#dids + 1] = line
  end
end

local structure = os.getenv("MIX") == "structure"

local function structure_request()
  local pick = math.random(4)
  if pick == 1 then
    return wrk.format("GET", "/api/overview")
  elseif pick == 2 then
    return wrk.format("GET", "/api/clusters")
  elseif pick == 3 then
    return wrk.format("GET", "/api/cluster/" .. math.random(0, tonumber(os.getenv("CLUSTERS")) - 1))
  end
  return wrk.format("GET", "/api/author/" .. math.random(0, tonumber(os.getenv("AUTHORS")) - 1) .. "/impact")
end

function request()
  if structure then
    return structure_request()
  end
  local did = dids[math.random(#dids)]
  if math.random() < 0.5 then
    return wrk.format("GET", "/api/paper/" .. did)
  end
  return wrk.format("GET", "/api/neighbourhood/" .. did .. "?hops=1&direction=both&limit=100")
end

function response(status, headers, body)
  answered = answered + 1
  if answered == math.ceil(total / threads) then
    wrk.thread:stop()
    io.open(os.getenv("DONE_DIR") .. "/" .. tostring({}):match("0x(%x+)"), "w"):close()
  end
end
