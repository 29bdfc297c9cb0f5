"""The seeds of the fuzzers, from the statements that the project has anyway, and a dictionary."""
import hashlib
import re

FAMILIES = ("mysql", "postgresql", "oracle", "sqlite", "sqlserver", "mariadb")
SETTINGS = 6  # two ways to quote, three current schemas: see fuzz_input.h


def paragraphs(root):
    """fuzz/seeds: FAMILY.sql, with blank lines between the statements."""
    for path in sorted((root / "fuzz/seeds").glob("*.sql")):
        for statement in path.read_text().split("\n\n"):
            yield (path.stem,), statement.strip("\n")


def with_bytes(text):
    """The signs of tests/constructs and tests/differential, as the bytes that they stand for."""
    for sign, byte in ("␊\n", "␍\r", "␉\t", "␂\ufeff", "⍽\u00a0"):
        text = text.replace(sign, byte)
    return text


def lines(root):
    """tests/differential/statements.txt: "NAME: STATEMENT" below "@ FAMILIES"."""
    families = ()
    for line in (root / "tests/differential/statements.txt").read_text().split("\n"):
        if line.startswith("@ "):
            families = tuple(line[2:].split())
        elif families and line:
            yield families, with_bytes(line.partition(": ")[2])


def constructs(root):
    """tests/constructs: lines "@ FAMILIES: ..." and ">> TEXT", in a frame with a gap for it."""
    for path in sorted((root / "tests/constructs").glob("*.txt")):
        frame, families = "…", FAMILIES
        for line in path.read_text().split("\n"):
            if line.startswith("frame "):
                frame = line[6:].split(" => ")[0]
            elif line.startswith("@ "):
                named = tuple(f for f in FAMILIES if re.search(rf"\b{f}\b", line.split(":")[0]))
                families = named or FAMILIES
            elif line.startswith(">> "):
                text = with_bytes(line[3:])
                is_whole = re.match(r"\s*\(*\s*(SELECT|WITH)\b", text, re.I)
                yield families, text if is_whole else frame.replace("…", text)


def findings(root):
    """tests/hostile/findings: "FAMILY SCHEMA" on the first line, then the text."""
    for path in sorted((root / "tests/hostile/findings").glob("*")):
        head, _, text = path.read_bytes().partition(b"\n")
        yield (head.split(b" ")[0].decode(),), text


def write_seeds(root, folder):
    """Writes a file for each statement, family and setting; returns their number."""
    folder.mkdir(parents=True, exist_ok=True)
    count = 0
    for source in (paragraphs, lines, constructs, findings):
        for families, text in source(root):
            text = text.encode() if isinstance(text, str) else text
            for family in families:
                digest = hashlib.sha1(family.encode() + text)
                setting = FAMILIES.index(family) + 6 * (digest.digest()[0] % SETTINGS)
                (folder / digest.hexdigest()).write_bytes(bytes([setting]) + text)
                count += 1
    return count


def write_dictionary(root, path):
    """The keywords of the grammar and the phrases of the mutator, for the byte mutations."""
    keywords = re.findall(r'^SQLET_KEYWORD\(\w+, ("[^"\\]+")\)',
                          (root / "src/platform/sqlet/keywords.inc").read_text(), re.M)
    phrases = re.findall(r'"(?:[^"\\\n]|\\.)*"', (root / "fuzz/phrases.inc").read_text())
    for short, long in ((r"\n", r"\x0A"), (r"\r", r"\x0D"), (r"\t", r"\x09")):  # no others are read
        phrases = [re.sub(r"(?<!\\)((?:\\\\)*)" + re.escape(short), r"\1" + re.escape(long), phrase)
                   for phrase in phrases]
    path.write_text("".join(word + "\n" for word in keywords + phrases))
