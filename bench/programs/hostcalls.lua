-- Host calls of built-ins in a loop.
local sqrt, abs = math.sqrt, math.abs
local s = 0.0
for i = 1, 2000000 do s = s + sqrt(i) - abs(s / 1000000.0) end
print(string.format("result %.6f", s))
