#!/usr/bin/env python3
"""doc-filter.py HEADER: the header with its plain comments in the form that Doxygen reads, on standard output.

The comment that opens a header becomes the page of that file, a comment in front of a declaration belongs to it, and
one behind a member to that member. The texts are prose, not commands: what Doxygen would take for one is escaped.
"""
import re
import sys

SPECIAL = re.compile(r'([\\@<>&#%*~|])')


def escaped(text):
    """Prose with its special characters escaped; code, indented or in backticks, stays as it is."""
    if text.startswith('     '):
        return text.replace('*/', '* /')
    parts = text.split('`')
    for i in range(0, len(parts), 2):
        parts[i] = SPECIAL.sub(r'\\\1', parts[i])
    return '`'.join(parts)


def page(name, lines):
    body = [escaped(line[2:]) for line in lines]
    return ['/** @file %s' % name] + [''] + body + ['*/']


def declaration(line):
    """A line behind the opening comment."""
    stripped = line.strip()
    match = re.match(r'^(.*[;,])\s+// (.*)$', line)
    if stripped == '//' or stripped.startswith('// '):
        return line.replace(stripped, '///' + escaped(stripped[2:]), 1)
    if match and not re.match(r'(class|struct) \w+;', line):
        return match.group(1) + '  ///< ' + escaped(match.group(2))
    return line


def filtered(name, lines):
    opening = 0
    while opening < len(lines) and lines[opening].startswith('//'):
        opening += 1
    result = page(name, lines[:opening])
    for before, line in zip([''] + lines[opening:], lines[opening:]):
        # What a class is for stands in front of the file, unless it has a comment of its own.
        if re.match(r'(class|struct) ZEL_API \w+.*{', line) and not before.startswith('//'):
            result.append('/// @copydoc ' + name)
        result.append(declaration(line))
    return result


def main():
    path = sys.argv[1]
    with open(path, encoding='utf-8') as header:
        lines = header.read().splitlines()
    print('\n'.join(filtered(path.rsplit('/', 1)[-1], lines)))


if __name__ == '__main__':
    main()
