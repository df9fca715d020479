-- Append a long text piece by piece and compare it with a second one.
local s, t = "", ""
for i = 1, 100000 do s = s .. "ab" end
for i = 1, 50000 do t = t .. "abab" end
local gleich = 0
if s == t then gleich = 1 end
if s .. "x" == t then gleich = 2 end
print("result " .. gleich)
