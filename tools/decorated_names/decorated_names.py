#!/usr/bin/env python3
"""Names by which hosts of Microsoft's compiler bind to the library.

Both compilers for 32-bit Windows call functions alike and name them differently. clang tells the names of a
declaration for both. Written are, for every declaration of the public headers that such a host can use:

    decorated_names.def   the module definition that was given, with aliases of what it exports
    decorated_names.cpp   constructors: Microsoft's return the object, the other compiler's return nothing
    microsoft.def         what the import library for such hosts names

Left out is what the library does not export, what takes or returns types of the toolkit, and virtual members other
than destructors: their place is in a table of virtual functions, which the compilers lay out in different ways.
"""

import argparse
import json
import re
import subprocess
from pathlib import Path

STAND_INS = Path(__file__).resolve().parent / "stand_ins"
CLASSES = ("QV_N2K_PGN_DB_c", "PGN_VistelTree_c", "PGN_VistelDlg_c", "PGN_VistelUnitDlg_c")
FREE = ("qv_n2k_pgn_db", "GetDispDataType_Num", "GetUnitDataType_Num", "PGN_VistelTree_PutMsg")
HEADER = "pgn_vistel/pgn_vistel.h"


def syntax_tree(clang, target, include):
    """The declarations of the public headers as clang sees them for a target.

    Marks of what is exported depend on the platform; those of others say more than those of Windows.
    """
    command = [clang, f"--target={target}", "-std=c++20", "-ffreestanding", "-nostdinc", "-U_WIN32",
               f"-I{STAND_INS}", f"-I{include}", "-include", HEADER, "-x", "c++", "/dev/null", "-fsyntax-only",
               "-Xclang", "-ast-dump=json"]
    return json.loads(subprocess.run(command, check=True, capture_output=True).stdout)


def declarations(tree):
    """(class or None, declaration) for all that the library exports, in the order of the headers."""
    for node in tree["inner"]:
        if node.get("name") in CLASSES and node.get("completeDefinition"):
            for member in node["inner"]:
                if member["kind"] in ("CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl"):
                    yield node["name"], member
        elif node.get("name") in FREE and "mangledName" in node:
            yield None, node


def parameters(declaration):
    return [part["type"]["qualType"] for part in declaration.get("inner", []) if part["kind"] == "ParmVarDecl"]


def has(declaration, attribute):
    return any(part["kind"] == attribute for part in declaration.get("inner", []))


def is_virtual(declaration):
    return declaration.get("virtual", False) or has(declaration, "OverrideAttr")


def is_usable(declaration):
    if declaration.get("isImplicit") or declaration.get("explicitlyDefaulted"):
        return False  # written by the host's own compiler
    if is_virtual(declaration) and declaration["kind"] != "CXXDestructorDecl":
        return False
    return re.search(r"\bwx", declaration["type"]["qualType"]) is None


def microsoft_name(class_name, declaration):
    if declaration["kind"] == "CXXDestructorDecl":  # clang tells another entry of it
        access = "U" if is_virtual(declaration) else "Q"
        return f"??1{class_name}@@{access}AE@XZ"
    return declaration["mangledName"]


def constructor(number, class_name, declaration):
    """A function that constructs an object and returns it: (its name, its text)."""
    function = f"pgn_vistel_construct_{number}"
    types = parameters(declaration)
    names = "abcdefgh"[:len(types)]
    declared = "".join(f", {kind} {name}" for kind, name in zip(types, names))
    passed = ", ".join(names)
    return function, (f"__attribute__((thiscall)) void* {function}(void* place{declared}) {{\n"
                      f"    return ::new (place) {class_name}({passed});\n}}\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--clang", default="clang++-14")
    parser.add_argument("--include", type=Path, required=True, help="folder of the public headers")
    parser.add_argument("--exports", type=Path, required=True, help="module definition with what the library exports")
    parser.add_argument("--library", default="pgn_vistel.dll", help="file name of the library")
    parser.add_argument("--output", type=Path, required=True, help="folder of what is written")
    options = parser.parse_args()

    definition = options.exports.read_text(encoding="utf-8")
    exported = set(definition.split())
    pairs = zip(declarations(syntax_tree(options.clang, "i686-pc-windows-msvc", options.include)),
                declarations(syntax_tree(options.clang, "i686-w64-windows-gnu", options.include)), strict=True)
    aliases, names, constructors = [], [], []
    for (class_name, theirs), (_, ours) in pairs:
        target = ours["mangledName"].removeprefix("_")
        if target not in exported or not is_usable(theirs):
            continue
        decorated = microsoft_name(class_name, theirs)
        data = " DATA" if theirs["kind"] == "VarDecl" else ""
        if theirs["kind"] == "CXXConstructorDecl":
            target, text = constructor(len(constructors), class_name, theirs)
            constructors.append(text)
        aliases.append(f'"{decorated}" = {target}{data}\n')
        names.append(f'"{decorated}"{data}\n')

    (options.output / "decorated_names.def").write_text(definition + "".join(aliases), encoding="utf-8")
    (options.output / "microsoft.def").write_text(f"LIBRARY {options.library}\nEXPORTS\n" + "".join(names),
                                                  encoding="utf-8")
    (options.output / "decorated_names.cpp").write_text(
        f'#include <new>\n\n#include "{HEADER}"\n\nextern "C" {{\n\n' + "\n".join(constructors) + '\n}\n',
        encoding="utf-8")


if __name__ == "__main__":
    main()
