-- Floating-point arithmetic: a sum of a rational function.
local x, s = 0.0, 0.0
for i = 1, 5000000 do
  x = x + 0.000001
  s = s + x * x / (1.0 + x)
end
print(string.format("result %.6f", s))
