-- Move texts between variables and compare them: load, store, order.
local a, b, c = "Meier, Anton", "Mueller, Berta", "Meier, Anna"
local zaehler, tmp = 0, nil
for i = 1, 1000000 do
  if a > b then tmp = a; a = b; b = tmp end
  if b > c then tmp = b; b = c; c = tmp; zaehler = zaehler + 1 end
  if a == c then zaehler = zaehler - 1 end
  tmp = a; a = c; c = tmp
end
print("result " .. zaehler)
