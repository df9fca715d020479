-- Strings: keys built from numbers, joined into lines, compared.
local n, line = 0, ""
for i = 1, 500000 do
  local key = "k" .. i
  line = line .. key .. ";"
  if key < "k5" then n = n + 1 end
  if line == "k1;k2;k3;" then n = n + 100 end
  if i - (i // 20) * 20 == 0 then line = "" end
end
print("result " .. n)
