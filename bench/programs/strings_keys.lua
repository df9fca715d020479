-- Build keys from a number, order them, look for one.
local vorne, gefunden = 0, 0
for i = 1, 1000000 do
  local k = "key" .. i
  if k < "key5" then vorne = vorne + 1 end
  if k == "key777777" then gefunden = i end
end
print("result " .. vorne + gefunden)
