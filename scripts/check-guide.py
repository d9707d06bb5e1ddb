#!/usr/bin/env python3
"""Keeps the guide's code blocks equal to the programs they come from.

In docs/guide.md a block is announced by a comment naming its source and excerpt:

    <!-- from examples/guide/records.cpp: write-read -->
    ```cpp
    ...
    ```

and in the source the excerpt lies between "// guide: write-read" and "// end guide", taken
with its common indentation removed. The check fails on any block that differs, any excerpt
that is missing, and any program under examples/guide that the guide never shows.
`--update` rewrites the blocks from the sources instead.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
GUIDE = ROOT / "docs" / "guide.md"
BLOCK = re.compile(r"<!-- from (\S+): (\S+) -->\n```cpp\n(.*?)```\n", re.S)


def excerpt(source, name):
    lines = (ROOT / source).read_text().split("\n")
    start = [i for i, line in enumerate(lines) if line.strip() == "// guide: " + name]
    if len(start) != 1:
        raise KeyError(f"{source}: {len(start)} excerpts named '{name}'")
    end = next(i for i in range(start[0] + 1, len(lines)) if lines[i].strip() == "// end guide")
    body = lines[start[0] + 1:end]
    indent = min(len(line) - len(line.lstrip()) for line in body if line.strip())
    return "".join(line[indent:] + "\n" for line in body)


def main():
    update = sys.argv[1:] == ["--update"]
    text = GUIDE.read_text()
    problems, shown = [], set()

    def replace(match):
        source, name, block = match.groups()
        shown.add(source)
        try:
            wanted = excerpt(source, name)
        except (KeyError, OSError) as error:
            problems.append(str(error))
            return match.group(0)
        if block != wanted and not update:
            problems.append(f"{GUIDE.name}: the block '{name}' differs from {source}")
        return f"<!-- from {source}: {name} -->\n```cpp\n{wanted}```\n"

    new = BLOCK.sub(replace, text)
    for program in sorted((ROOT / "examples" / "guide").glob("*.cpp")):
        if str(program.relative_to(ROOT)) not in shown:
            problems.append(f"{GUIDE.name} never shows {program.relative_to(ROOT)}")
    if update and new != text:
        GUIDE.write_text(new)
    for problem in problems:
        print("check-guide:", problem, file=sys.stderr)
    if not problems:
        print(f"check-guide: {len(BLOCK.findall(new))} blocks match their programs")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
