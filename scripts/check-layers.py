#!/usr/bin/env python3
"""Checks that the folders of src/ keep their layers: an include never runs from a lower layer to a
higher one, no two folders include each other (directly or round a loop), and nothing in the core
includes a widget or GUI header.

usage: check-layers.py SOURCE_DIR
"""
import os
import re
import sys

# Lowest first. Folders of one layer may include each other's files as long as no loop forms.
LAYERS = {
    'core': 0,  # the shared constants at the root of src/core
    'core/platform': 1,
    'core/db': 2,
    'core/orgchart': 3, 'core/filebox': 3, 'core/clientsettings': 3, 'core/onboarding': 3,
    'core/userimport': 3, 'core/directory': 3,
    'core/document': 4,
    'core/server': 5,
    'gui/widgets': 6,
    'gui/orgchart': 7, 'gui/filebox': 7, 'gui/clientsettings': 7, 'gui/onboarding': 7, 'gui/userimport': 7,
    'gui/document': 7,
    'gui/directory': 7,
    'gui/mainwindow': 8,
    '.': 9,  # src/main.cpp
}
# Where each tree looks for "folder/File.h", in order.
ROOTS = {'core': ['core'], 'gui': ['gui', 'core'], '.': ['gui', 'core']}
FORBIDDEN_IN_CORE = re.compile(r'#include\s*<(QtWidgets|QtGui|QtOpenGL|QtSvg)/|#include\s*<Q(Widget|Application|Dialog|'
                               r'MainWindow|Painter|Icon|Pixmap|Image|Font|Color|Palette|Action|Menu)\b')
INCLUDE = re.compile(r'#include\s*"([^"]+)"')


def sources(src):
    for folder, _, files in os.walk(src):
        for name in files:
            if name.endswith(('.h', '.cpp')):
                yield os.path.relpath(os.path.join(folder, name), src)


def folder_of(path):
    folder = os.path.dirname(path)
    return folder if folder else '.'


def resolve(src, including, target):
    tree = including.split('/')[0] if '/' in including else '.'
    for root in ROOTS[tree]:
        candidate = os.path.join(root, target)
        if os.path.isfile(os.path.join(src, candidate)):
            return candidate
    if os.path.isfile(os.path.join(src, folder_of(including), target)):
        return os.path.join(folder_of(including), target)
    return None


def find_loop(edges):
    state = {}
    stack = []

    def visit(node):
        state[node] = 1
        stack.append(node)
        for nxt in sorted(edges.get(node, ())):
            if state.get(nxt) == 1:
                return stack[stack.index(nxt):] + [nxt]
            if nxt not in state:
                loop = visit(nxt)
                if loop:
                    return loop
        stack.pop()
        state[node] = 2
        return None

    for node in sorted(edges):
        if node not in state:
            loop = visit(node)
            if loop:
                return loop
    return None


def main():
    src = os.path.join(sys.argv[1], 'src')
    problems = []
    edges = {}
    for path in sorted(sources(src)):
        folder = folder_of(path)
        if folder not in LAYERS:
            problems.append(f'{path}: the folder {folder} has no layer; add it to scripts/check-layers.py')
            continue
        with open(os.path.join(src, path), encoding='utf-8') as text:
            lines = text.read().splitlines()
        for number, line in enumerate(lines, 1):
            if path.startswith('core/') and FORBIDDEN_IN_CORE.search(line):
                problems.append(f'src/{path}:{number}: the core includes a GUI header: {line.strip()}')
            match = INCLUDE.match(line.strip())
            if not match:
                continue
            target = resolve(src, path, match.group(1))
            if target is None:
                continue  # generated files (moc) and headers outside src
            to = folder_of(target)
            if to == folder:
                continue
            if LAYERS.get(to, 99) > LAYERS[folder]:
                problems.append(f'src/{path}:{number}: {folder} (layer {LAYERS[folder]}) includes {target} '
                                f'of the higher layer {LAYERS.get(to)}')
            edges.setdefault(folder, set()).add(to)
    loop = find_loop(edges)
    if loop:
        problems.append('folders include each other: ' + ' -> '.join(loop))
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == '__main__':
    sys.exit(main())
