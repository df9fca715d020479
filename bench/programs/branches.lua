-- Nested loops with branches.
local a, b, c = 0, 0, 0
for i = 1, 10000 do
  for j = 1, 1000 do
    if (i + j) & 3 == 0 then a = a + 1
    elseif i > j then b = b + 2
    else c = c + 1
    end
  end
end
print("result " .. (a + b + c * 3))
