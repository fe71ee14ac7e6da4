#!/usr/bin/env python3
"""Writes each C++ example of the README as a translation unit of its own, so that the package test compiles the
examples as they stand, against the installed headers alone: readme_examples.py README.md OUTDIR.

Declarations at the outer level of an example (#include lines, types, functions) stay at file level; its
statements become the body of a function. Names an example takes from the application around it (a parent
window, a resource id) come from ReadmeContext.h."""
import pathlib
import re
import sys

readme, outdir = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
outdir.mkdir(parents=True, exist_ok=True)
blocks = re.findall(r"^```cpp\n(.*?)^```", readme.read_text(encoding="utf-8"), re.S | re.M)
if not blocks:
    sys.exit(f"{readme}: no C++ examples found")

DECLARATION = re.compile(r"^(#|struct |class |template|namespace |static |int WINAPI |[A-Za-z_][\w:<>*& ]* \w+\(.*\)\s*(\{.*)?$)")

for number, block in enumerate(blocks, 1):
    declarations, statements = [], []
    depth, target, pending = 0, None, False
    for line in block.splitlines():
        code = line.split("//")[0].strip()
        # A declaration goes on until its braces close, and a signature without them into the next line.
        if depth == 0 and not pending:
            target = declarations if DECLARATION.match(line) else statements
        target.append(line)
        depth += code.count("{") - code.count("}")
        pending = (target is declarations and depth == 0 and code != "" and not code.startswith("#") and
                   not code.endswith((";", "}")))
    body = "\n".join("    " + s if s else s for s in statements)
    unit = (f"// README example {number}, written out by readme_examples.py at build time: do not edit.\n"
            f"#include <zcmod/zcmod.h>\n\n#include \"ReadmeContext.h\"\n\n" + "\n".join(declarations) +
            f"\n\nvoid ReadmeExample{number}()\n{{\n{body}\n}}\n")
    (outdir / f"readme_example_{number}.cpp").write_text(unit, encoding="utf-8")
print(len(blocks))
