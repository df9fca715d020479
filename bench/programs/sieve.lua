-- Arrays: the primes below 1,000,000 by the sieve of Eratosthenes, three times.
local n = 1000000
local flags = {}
local count
for round = 1, 3 do
  for i = 0, n - 1 do flags[i] = 1 end
  count = 0
  for i = 2, n - 1 do
    if flags[i] == 1 then
      count = count + 1
      local j = i + i
      while j < n do flags[j] = 0; j = j + i end
    end
  end
end
print("result " .. count)
