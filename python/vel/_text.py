"""Numbers and states written as the program writes them."""
import decimal
import math


def shortest(value):
    """The shortest text that reads back to the same double, choosing between
    fixed and scientific notation as C++'s std::to_chars does: the shorter
    one, fixed on a tie ("1e+05", "1000", "0.001", "1e-05")."""
    if math.isnan(value):
        return "nan"
    if math.isinf(value):
        return "-inf" if value < 0 else "inf"
    exact = decimal.Decimal(repr(value)).as_tuple()
    sign = "-" if exact.sign else ""
    digits = "".join(map(str, exact.digits)).rstrip("0")
    if not digits:
        return sign + "0"
    exponent = exact.exponent + len("".join(map(str, exact.digits))) - len(digits)
    scientific_exponent = exponent + len(digits) - 1
    scientific = (digits[0] + ("." + digits[1:] if len(digits) > 1 else "") + "e" +
                  ("+" if scientific_exponent >= 0 else "-") + f"{abs(scientific_exponent):02d}")
    if exponent >= 0:
        fixed = digits + "0" * exponent
    elif len(digits) + exponent > 0:
        point = len(digits) + exponent
        fixed = digits[:point] + "." + digits[point:]
    else:
        fixed = "0." + "0" * -(len(digits) + exponent) + digits
    return sign + (fixed if len(fixed) <= len(scientific) else scientific)


def bound(value):
    """A bound or numbered state as the program writes it (-inf, inf)."""
    return shortest(value)


def interval(low, high):
    return f"[{bound(low)};{bound(high)})"
