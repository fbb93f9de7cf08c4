"""Two spellings of one instruction, objdump's and the table's, brought to one form: a mnemonic and its operands.

An operand is a tuple whose first element is its kind:

    ("regs", mask)                          data and address registers, bit 0 = D0, bit 15 = A7
    ("special", name)                       CCR, SR, a control register, a cache
    ("at", "(a0)+")                         a register and nothing else
    ("off", register, displacement)         d16(An)
    ("index", base, displacement, index, full)
                                            index is (register, size, scale); base "pc" counts from the instruction's
                                            first byte; full tells the full format of the extension word
    ("abs", address), ("pc", distance), ("imm", value), ("word", value)
"""

import functools
import re

BRANCHES = frozenset("b" + c for c in "ra sr hi ls cc cs ne eq vc vs pl mi ge lt gt le".split())
MASK32 = 0xFFFFFFFF
REGISTER_NUMBERS = {f"{letter}{n}": n + 8 * (letter == "a") for letter in "da" for n in range(8)}
REGISTER_NUMBERS.update(fp=14, sp=15)
NAMES = {number: name for name, number in REGISTER_NUMBERS.items() if len(name) == 2 and name[1].isdigit()}


class Misspelt(Exception):
    """A text that is of none of the known forms."""


def signed(value: int, bits: int) -> int:
    value &= (1 << bits) - 1
    return value - (1 << bits) if value >> bits - 1 else value


@functools.lru_cache(maxsize=None)
def split_operands(text: str) -> "tuple[str, ...]":
    """At the commas outside parentheses."""
    if not text:
        return ()
    if "(" not in text:
        return tuple(text.split(","))
    parts, depth, start = [], 0, 0
    for n, c in enumerate(text):
        depth += (c == "(") - (c == ")")
        if c == "," and not depth:
            parts.append(text[start:n])
            start = n + 1
    return (*parts, text[start:])


@functools.lru_cache(maxsize=None)
def register_mask(text: str, prefix: str) -> int:
    mask = 0
    for part in text.split("/"):
        names = [name.removeprefix(prefix) for name in part.split("-")]
        numbers = [REGISTER_NUMBERS[name] for name in names]
        for n in range(numbers[0], numbers[-1] + 1):
            mask |= 1 << n
    return mask


def index_of(word: int) -> "tuple[str, str, int]":
    """Register, size and scale, which the extension word holds."""
    return NAMES[word >> 12], "l" if word & 0x800 else "w", 1 << (word >> 9 & 3)


# ---------------------------------------------------------------------------------------------------- objdump

THEIR_REGISTERS = re.compile(r"%(?:[da][0-7]|fp|sp)(?:[/-]%(?:[da][0-7]|fp|sp))*")
THEIR_NUMBER = re.compile(r"#-?\d+")
THEIR_SPECIAL = re.compile(r"%(?!zpc|pc)[a-z]{2,5}[01]?|[ndib]c")
THEIR_AT = re.compile(r"%(a[0-7]|fp|sp)@([+-]?)")
THEIR_OFF = re.compile(r"%(a[0-7]|fp|sp)@\((-?\d+)\)")
THEIR_PC = re.compile(r"%pc@\(0x([0-9a-f]+)\)")
THEIR_INDEX = re.compile(r"(%\w+)?@\((?:0x)?([0-9a-f]+)(?:,([^)]*))?\)(@\([0-9a-f]+(?:,([^)]*))?\))?")


def their_index(text: str) -> "tuple[str, str, int] | None":
    if not text:
        return None
    register, size, *scale = text.removeprefix("%").split(":")
    return NAMES[REGISTER_NUMBERS[register]], size, int(scale[0]) if scale else 1


@functools.lru_cache(maxsize=1 << 16)
def their_fixed_operand(text: str) -> "tuple | None":
    """An operand whose meaning does not hang on where the instruction stands; else None."""
    if THEIR_REGISTERS.fullmatch(text):
        return "regs", register_mask(text, "%")
    if THEIR_SPECIAL.fullmatch(text):
        return "special", text.removeprefix("%")
    if THEIR_NUMBER.fullmatch(text):
        return "imm", int(text[1:])
    if text.isdecimal():
        return "imm", int(text)
    if found := THEIR_AT.fullmatch(text):
        name = NAMES[REGISTER_NUMBERS[found[1]]]
        return "at", {"": f"({name})", "+": f"({name})+", "-": f"-({name})"}[found[2]]
    if found := THEIR_OFF.fullmatch(text):
        return "off", NAMES[REGISTER_NUMBERS[found[1]]], int(found[2])
    return None


def their_operand(text: str, at: int, branch: bool) -> tuple:
    fixed = their_fixed_operand(text)
    if fixed:
        return fixed
    if text.startswith("0x"):
        return ("pc", int(text, 16) - at & MASK32) if branch else ("abs", int(text, 16))
    if found := THEIR_PC.fullmatch(text):
        return "pc", int(found[1], 16) - at & MASK32
    if found := THEIR_INDEX.fullmatch(text):
        base = found[1][1:] if found[1] else None
        shown = int(found[2], 16) - (at if base == "pc" else 0) & MASK32
        base = NAMES[REGISTER_NUMBERS[base]] if base in REGISTER_NUMBERS else base
        return "index", base, shown, their_index(found[3] or found[5])
    return "word", text


def is_branch(mnemonic: str) -> bool:
    return mnemonic in BRANCHES or mnemonic.startswith(("db", "fb", "fdb", "pb", "pdb"))


@functools.lru_cache(maxsize=None)
def their_mnemonic(mnemonic: str, length: int) -> str:
    """Without the size of a branch, which must be the one that its length tells."""
    size = {2: "s", 4: "w", 6: "l"}.get(length)
    if mnemonic[:-1] in BRANCHES and mnemonic[-1] == size:
        return mnemonic[:-1]
    if mnemonic.startswith(("fb", "pb")) and size == "l" and mnemonic.endswith("l"):
        return mnemonic[:-1]
    return {"linkw": "link"}.get(mnemonic, mnemonic)


def theirs(text: str, length: int, at: int) -> "tuple[str, list]":
    """objdump's text of an instruction at address `at`."""
    mnemonic, _, rest = text.partition(" ")
    mnemonic = their_mnemonic(mnemonic, length)
    branch = is_branch(mnemonic)
    operands = [their_operand(part, at, branch) for part in split_operands(rest)]
    if mnemonic.startswith("movem"):
        operands = [("regs", 0) if operand == ("imm", 0) else operand for operand in operands]
    return mnemonic, operands


# ------------------------------------------------------------------------------------------------------ ours

# Only these have no size, but for the ones of later processors and coprocessors.
UNSIZED = (
    "[ASN]BCD|EXG|SWAP|LEA|PEA|JMP|JSR|TAS|MOVE|MOVEQ|TRAPV?|LINK|UNLK|STOP|BTST|BCHG|BCLR|BSET|ILLEGAL|NOP|RESET"
    "|RT[ERSDM]|B(RA|SR)|(D?B|S|TRAP)(T|F|HI|LS|CC|CS|NE|EQ|VC|VS|PL|MI|GE|LT|GT|LE)"
    "|BKPT|MOVEC|CALLM|PACK|UNPK|BF[A-Z]+|MOVE16|HALT|PULSE|LPSTOP|CINV[LPA]|CPUSH[LPA]|PLPA[RW]|[FP][A-Z]+(cc)?"
)
OUR_NAME = re.compile(UNSIZED + r"|[A-Z0-9]+(cc|/CMP2)?\.[BWL]")
OUR_REGISTERS = re.compile(r"[DA][0-7](?:[/-][DA][0-7])*")
OUR_IMMEDIATE = re.compile(r"#(?:\$([0-9A-F]+)|(\d+))")
OUR_AT = re.compile(r"\(A[0-7]\)\+?|-\(A[0-7]\)")
OUR_OFF = re.compile(r"\$([0-9A-F]+)\((A[0-7])\)")
OUR_SHORT = re.compile(r"\(\$([0-9A-F]+)\)\.W")
OUR_INDEX = re.compile(r"\[X:([0-9A-F]{4})\]([0-9A-F]+|\?)\((A[0-7]|PC),\[X:([0-9A-F]{4})\]([AD][0-7])\)")
OUR_SECOND_INDEX = re.compile(r"\[X:([0-9A-F]{4})\]\((A[0-7]),Xn\)")
OUR_WORD = re.compile(r"\[([0-9A-F]{4})\]")
OUR_WORD_REGISTER = re.compile(r"\(\[X:[89A-F][0-9A-F]{3}\](A[0-7])\)\+")
OUR_SPECIAL = re.compile(r"(CCR|SR|USP|NC|DC|IC|BC)|([A-Z]{3,4}) \(680[12]0\+\)|\((unknown)\)")


@functools.lru_cache(maxsize=1 << 16)
def our_operand(text: str) -> tuple:
    """What the table spells; a distance from the PC is still an address.

    By its signs an address is ("bare", address), ("abs", address), ("target", address) before "(PC)", or with both
    signs ("loop target", address).
    """
    if OUR_REGISTERS.fullmatch(text):
        return "regs", register_mask(text.lower(), "")
    if not text:  # an empty list
        return "regs", 0
    if found := OUR_SPECIAL.fullmatch(text):
        return "special", found[found.lastindex].lower()
    if found := OUR_IMMEDIATE.fullmatch(text):
        return "imm", int(found[1], 16) if found[1] else int(found[2])
    if OUR_AT.fullmatch(text):
        return "at", text.lower()
    if found := OUR_OFF.fullmatch(text):
        return "off", found[2].lower(), signed(int(found[1], 16), 16)
    if found := OUR_SHORT.fullmatch(text):
        return "abs", signed(int(found[1], 16), 16) & MASK32, "short"
    if found := OUR_WORD.fullmatch(text):
        return "word", int(found[1], 16)
    if found := OUR_WORD_REGISTER.fullmatch(text):
        return "at", f"({found[1].lower()})+"
    if found := OUR_INDEX.fullmatch(text):
        return our_index(found)
    if found := OUR_SECOND_INDEX.fullmatch(text):
        word = int(found[1], 16)
        return "index", found[2].lower(), signed(word, 8) & MASK32, index_of(word), bool(word & 0x100)
    return our_address(text)


def our_address(text: str) -> tuple:
    if found := re.fullmatch(r"(\$?)([0-9A-F]+)(\(PC\))?", text):
        kind = {"": ("bare", "target"), "$": ("abs", "loop target")}[found[1]][found[3] is not None]
        return kind, int(found[2], 16)
    raise Misspelt(text)


def our_index(found: "re.Match") -> tuple:
    """Format, size and scale are in the word; the register that is shown must be the word's."""
    word = int(found[1], 16)
    index = index_of(word)
    if found[1] != found[4] or found[5].lower() != index[0]:
        raise Misspelt(found[0])
    full = bool(word & 0x100)
    base = found[3].lower()
    if full:
        bits = 4 * len(found[2])
        shown = 0 if found[2] == "?" else signed(int(found[2], 16), bits)
        base = {True: "zpc" if base == "pc" else None, False: base}[bool(word & 0x80)]
        index = None if word & 0x40 else index
    else:
        shown = signed(int(found[2], 16), 8)
    return "index", base, shown & MASK32, index, full




def ours(text: str, base: int) -> "tuple[str, list]":
    """The decoder's text of an instruction at address `base`."""
    name, _, rest = text.partition(" ")
    if not OUR_NAME.fullmatch(name):
        raise Misspelt(name)
    mnemonic = name.replace(".", "").lower()
    operands = list(map(our_operand, split_operands(rest)))
    if mnemonic == "move":
        mnemonic = "movel" if ("special", "usp") in operands else "movew"
    ahead = bytes_ahead(mnemonic, operands)
    return mnemonic, [settled(mnemonic, operand, ahead, base) for operand in operands]


def settled(mnemonic: str, operand: tuple, ahead: int, base: int) -> tuple:
    """Addresses in the place and with the signs at which what follows the flow looks for them.

    Distances count from the instruction's first byte, as the processor does it: the decoder takes every displacement
    for the word behind the opcode; where others stand before it, the processor counts from further on.
    """
    kind = operand[0]
    loop = mnemonic.startswith(("db", "fdb", "pdb"))
    if kind == "bare" and mnemonic in ("jmp", "jsr"):
        return "abs", operand[1]
    if kind in ("bare", "target", "loop target"):
        if kind != ("loop target" if loop else "bare" if is_branch(mnemonic) else "target"):
            raise Misspelt(f"{mnemonic} {operand}")
        return "pc", operand[1] - base + ahead & MASK32
    if kind == "abs" and mnemonic in ("jmp", "jsr") and operand[2:] != ("short",):
        raise Misspelt(f"{mnemonic} {operand}")
    if kind == "index" and operand[1] == "pc":
        return "index", "pc", operand[2] + 2 + ahead & MASK32, *operand[3:]
    return operand[:2] if kind == "abs" else operand


def bytes_ahead(mnemonic: str, operands: list) -> int:
    """Bytes between the opcode word and the displacement of a PC-relative operand."""
    words = sum(operand[0] == "word" for operand in operands)
    if mnemonic.startswith("movem") or mnemonic == "callm":
        words += 1
    elif operands and operands[0][0] == "imm":
        words += {"cmpil": 2}.get(mnemonic, 1)
    return 2 * words


# ------------------------------------------------------------------------------------------------ comparing

BYTE_IMMEDIATES = ("btst", "bchg", "bclr", "bset", "moveq", "callm")
NAMED_CONTROLS = [("special", name) for name in "sfc dfc cacr usp vbr caar msp isp".split()]


@functools.lru_cache(maxsize=None)
def immediate_mask(mnemonic: str) -> int:
    if mnemonic in BYTE_IMMEDIATES or mnemonic.endswith("b"):
        return 0xFF
    return MASK32 if mnemonic.endswith("l") else 0xFFFF


def same_operand(mnemonic: str, our: tuple, their: tuple) -> bool:
    if our[0] == "imm" and their[0] == "imm":
        return not (our[1] ^ their[1]) & immediate_mask(mnemonic)
    if our[0] == "index" and their[0] == "index":
        return our[:4] == their
    if our == ("special", "unknown"):
        return their not in NAMED_CONTROLS
    return our == their


def same_operands(mnemonic: str, our: list, their: list) -> bool:
    return len(our) == len(their) and all(same_operand(mnemonic, a, b) for a, b in zip(our, their))
