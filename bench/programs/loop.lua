-- An integer loop: the sum of the remainders by 7.
local s = 0
for i = 1, 10000000 do s = s + (i - (i // 7) * 7) end
print("result " .. s)
