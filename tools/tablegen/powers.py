"""Powers of ten for the shortest decimal form of a floating number, normalised to 64 and 128 bits and rounded up."""

SINGLE_RANGE = (-31, 46)
DOUBLE_RANGE = (-30, 48)  # values from about 1e-32 to 1e30; others take the library's way


def normalised(exponent, bits):
    """floor(10^exponent * 2^x) + 1 with x so that the result has `bits` bits."""
    numerator, denominator = (10 ** exponent, 1) if exponent >= 0 else (1, 10 ** -exponent)
    shift = bits - (numerator.bit_length() - denominator.bit_length())
    scaled = (numerator << shift) // denominator if shift >= 0 else numerator // (denominator << -shift)
    while scaled.bit_length() > bits:
        shift -= 1
        scaled = (numerator << shift) // denominator if shift >= 0 else numerator // (denominator << -shift)
    return scaled + 1


def power_lines():
    single = [f"0x{normalised(e, 64):016X}u," for e in range(*SINGLE_RANGE)]
    double = [f"{{0x{p >> 64:016X}u, 0x{p & (2 ** 64 - 1):016X}u}},"
              for p in (normalised(e, 128) for e in range(*DOUBLE_RANGE))]
    return {"powers_single.inc": ("../tools/tablegen/powers.py", single),
            "powers_double.inc": ("../tools/tablegen/powers.py", double)}
