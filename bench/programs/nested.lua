-- A nested function with two arguments that changes a variable of the
-- function around it, called in a loop.
local function count(n)
  local total = 0
  local function add(a, b)
    total = total + a - b
    if total > 1000000 then total = total - 1000000 end
  end
  for i = 1, n do add(i & 255, (i // 3) & 127) end
  return total
end

print("result " .. count(3000000))
