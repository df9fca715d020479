-- Recursion and calls with an argument: the naive Fibonacci numbers.
local function fib(n)
  if n < 2 then return n end
  return fib(n - 1) + fib(n - 2)
end

print("result " .. fib(30))
