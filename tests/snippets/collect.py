#!/usr/bin/env python3
"""collect.py OUTPUT FILE...: a source that holds every example of the texts, to be compiled.

An example is a block of C++ in a Markdown file, or the indented code in the comment that opens a header. Each becomes
a function in a namespace of its own, `example_` and the file's name, in which the names of `around` and of
`around_` and the file's name are known: surroundings.h declares there what an example speaks of and does not show.
"""
import pathlib
import re
import sys

CODE = re.compile(r'[;{}]\s*(//.*)?$')
FUNCTION = re.compile(r'(void|int|bool) \w+\(.*\) \{')


def opening_blocks(lines):
    """The indented paragraphs of the comment that opens a header, each as (line number, lines)."""
    block, begin = [], 0
    for number, line in enumerate(lines, 1):
        if line.startswith('//     '):
            begin = begin if block else number
            block.append(line[7:])
        elif block and line.rstrip() == '//':
            block.append('')
        else:
            if block:
                yield begin, block
            block = []
            if not line.startswith('//'):
                return


def fenced_blocks(lines):
    """The blocks between ```cpp and ```."""
    begin = None
    for number, line in enumerate(lines, 1):
        if line == '```cpp':
            begin = number + 1
        elif line == '```' and begin is not None:
            yield begin, lines[begin - 1:number - 1]
            begin = None


def examples(path):
    lines = path.read_text(encoding='utf-8').splitlines()
    blocks = opening_blocks(lines) if path.suffix == '.h' else fenced_blocks(lines)
    return [(number, block) for number, block in blocks if any(CODE.search(line) for line in block)]


def as_source(path, number, block):
    """Functions of an example stand beside the one that its statements make; its own #include is there already."""
    block = [re.sub(r'^#include.*', '', line).replace('int main()', 'void Main()') for line in block]
    name = re.sub(r'\W', '_', path.stem)
    functions = [index for index, line in enumerate(block) if FUNCTION.match(line)]
    end = 0
    if functions:
        end = functions[-1] + 1
        while end < len(block) and not block[end - 1].rstrip().endswith('}'):
            end += 1
    line = '#line %d "' + path.name + '"'
    return '\n'.join([
        'namespace around_%s {}' % name,
        'namespace example_%s_%d {' % (name, number),
        'using namespace around;',
        'using namespace around_%s;' % name,
        line % number, *block[:end],
        'int Example() {',
        line % (number + end), *block[end:],
        'return 0;', '}', '}', ''])


def main():
    output, *paths = sys.argv[1:]
    parts = ['#include "surroundings.h"', '']
    for path in map(pathlib.Path, paths):
        found = examples(path)
        if path.suffix == '.h' and not found:
            sys.exit('%s: its opening comment has no example' % path)
        parts += [as_source(path, number, block) for number, block in found]
    pathlib.Path(output).write_text('\n'.join(parts), encoding='utf-8')


if __name__ == '__main__':
    main()
