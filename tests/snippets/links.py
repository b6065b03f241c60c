#!/usr/bin/env python3
"""links.py FILE.md...: every relative link leads to a file, every anchor to a heading, and README.md names each header.

Links into the web are not followed.
"""
import pathlib
import re
import sys

LINK = re.compile(r'\[[^\]]*\]\(([^)\s]+)\)')
FENCE = re.compile(r'^```.*?^```', re.M | re.S)


def anchors(path):
    """The anchors that a forge makes of the headings."""
    headings = re.findall(r'^#+ (.*)', FENCE.sub('', path.read_text(encoding='utf-8')), re.M)
    return {re.sub(r'[^\w\- ]', '', heading.lower()).replace(' ', '-') for heading in headings}


def broken(path):
    for link in LINK.findall(FENCE.sub('', path.read_text(encoding='utf-8'))):
        if re.match(r'\w+:', link):
            continue
        name, _, anchor = link.partition('#')
        target = path.parent / name if name else path
        if not target.exists():
            yield '%s: %s leads nowhere' % (path, link)
        elif anchor and anchor not in anchors(target):
            yield '%s: %s has no such heading' % (path, link)


def unnamed(readme):
    """The public headers that the table of families leaves out; what all of them stand on is no family."""
    text = readme.read_text(encoding='utf-8')
    for header in sorted((readme.parent / 'include').glob('*.h')):
        if header.name not in text and header.name not in ('ZELExport.h', 'ZELPlatformTypes.h'):
            yield '%s: %s is not named' % (readme, header.name)


def main():
    paths = [pathlib.Path(name) for name in sys.argv[1:]]
    faults = [fault for path in paths for fault in broken(path)]
    faults += [fault for path in paths if path.name == 'README.md' for fault in unnamed(path)]
    print('\n'.join(faults) or '%d documents: every link leads somewhere' % len(paths))
    sys.exit(1 if faults else 0)


if __name__ == '__main__':
    main()
