"""Names and values as messages show them."""


def shown(text, most=200):
    """Control characters and bytes that are no UTF-8 as \\xNN, so that nothing steers a terminal."""
    def one(character):
        code = ord(character)
        if 0xDC80 <= code <= 0xDCFF:  # how Python keeps such a byte
            return f"\\x{code - 0xDC00:02X}"
        if code < 0x20 or 0x7F <= code < 0xA0:
            return f"\\x{code:02X}"
        return "\ufffd" if 0xD800 <= code <= 0xDFFF else character

    short = text if len(text) <= most else text[:most] + "…"
    return "".join(map(one, short))
