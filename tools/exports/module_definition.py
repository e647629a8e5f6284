"""module_definition.py MAP OBJECT...: prints the module definition by which a library for Windows exports what the version
script MAP lets out of one for ELF. The environment's NM and CXXFILT are those of the compiler."""
import fnmatch
import os
import re
import subprocess
import sys


class Names:
    """What a version script says of global or of local names: some to the letter (quoted), some as patterns."""

    def __init__(self):
        self.exact = set()
        self.patterns = []

    def match(self, name):
        return any(fnmatch.fnmatchcase(name, pattern) for pattern in self.patterns)


def read_map(text):
    sections = {"global": Names(), "local": Names()}
    for label, quoted, pattern in re.findall(r'(\w+):(?!:)|"([^"]*)"\s*;|([\w:*]+)\s*;', re.sub(r"#.*", "", text)):
        if label:
            section = sections[label]
        elif quoted:
            section.exact.add(quoted)
        else:
            section.patterns.append(pattern)
    return sections["global"], sections["local"]


def tool(name, *arguments, **options):
    return subprocess.run([os.environ[name], *arguments], check=True, capture_output=True, text=True,
                          **options).stdout.splitlines()


def defined(objects):
    """What objects define for others, in order: name of the linker, kind, name in C++ spelling."""
    lines = (line.split() for line in tool("NM", "--portability", "--extern-only", "--defined-only", *objects))
    kinds = {fields[0].removeprefix("_"): fields[1] for fields in lines if len(fields) >= 3}
    symbols = sorted(kinds)
    spellings = tool("CXXFILT", "--no-strip-underscores", input="\n".join(symbols))
    return [(symbol, kinds[symbol], spelling) for symbol, spelling in zip(symbols, spellings, strict=True)]


def main(map_file, objects):
    with open(map_file, encoding="utf-8") as lines:
        out, kept = read_map(lines.read())
    print("EXPORTS")
    for symbol, kind, name in defined(objects):
        if name in out.exact or (out.match(name) and name not in kept.exact):
            print(f"    {symbol}" if kind == "T" else f"    {symbol} DATA")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
