#!/usr/bin/env python3
"""Writes each C++ example of the README as a translation unit of its own, so that the package test compiles the
examples as they stand, against the installed headers alone: readme_examples.py README.md OUTDIR.

Declarations at the outer level of an example (#include lines, types, functions) stay at file level; its
statements become the body of a function with the parameters of a window procedure, and from a first "case"
on, the branches of a switch on its message; a line of "..." alone is code left out. Names an example takes from the application around it (a parent
window, a resource id) come from ReadmeContext.h."""
import pathlib
import re
import sys

readme, outdir = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
outdir.mkdir(parents=True, exist_ok=True)
blocks = re.findall(r"^```cpp\n(.*?)^```", readme.read_text(encoding="utf-8"), re.S | re.M)
if not blocks:
    sys.exit(f"{readme}: no C++ examples found")

# An #include, a type or a function (its signature, maybe with its opening brace).
DECLARATION = re.compile(r"^(#|struct |class |template|namespace |static |int WINAPI |"
                         r"[A-Za-z_][\w:<>*& ]* \w+\(.*\)\s*(\{.*)?$)")
FUNCTION = re.compile(r"^[A-Za-z_][\w:<>*& ]* \w+\(.*\)\s*(\{.*)?$")
# In an example with functions of its own, an object of a class type defined without an initial value is
# shared by them.
SHARED_OBJECT = re.compile(r"^[A-Z]\w*(<[^;]*>)?\s+\w+\s*;")

for number, block in enumerate(blocks, 1):
    declarations, statements = [], []
    depth, target, pending = 0, None, False
    # A line of "..." alone stands for code left out.
    lines = [re.sub(r"^(\s*)\.\.\.\s*$", r"\1// ...", line) for line in block.splitlines()]
    has_functions = any(FUNCTION.match(line) for line in lines)
    for line in lines:
        code = line.split("//")[0].strip()
        # A declaration goes on until its braces close, and a signature without them into the next line.
        if depth == 0 and not pending:
            shared = has_functions and SHARED_OBJECT.match(line)
            target = declarations if DECLARATION.match(line) or shared else statements
        target.append(line)
        depth += code.count("{") - code.count("}")
        pending = (target is declarations and depth == 0 and code != "" and not code.startswith("#") and
                   not code.endswith((";", "}")))
    # Statements from the first "case" on are the branches of a window or dialog procedure.
    cases = [i for i, line in enumerate(statements) if re.match(r"\s*case \w+:", line)]
    if cases:
        statements = (statements[:cases[0]] + ["switch (message) {"] + statements[cases[0]:] + ["}"])
    body = "\n".join("    " + s if s else s for s in statements)
    unit = (f"// README example {number}, written out by readme_examples.py at build time: do not edit.\n"
            f"#include <zcmod/zcmod.h>\n\n#include \"ReadmeContext.h\"\n\n" + "\n".join(declarations) +
            f"\n\nINT_PTR ReadmeExample{number}(UINT message, WPARAM wParam, LPARAM lParam)\n{{\n{body}\n"
            f"    return 0;\n}}\n")
    (outdir / f"readme_example_{number}.cpp").write_text(unit, encoding="utf-8")
print(len(blocks))
