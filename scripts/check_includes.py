#!/usr/bin/env python3
"""Checks that includes between the program's folders point one way, as scripts/include_layers
orders them. Prints each include that points the wrong way (or at a folder that is not listed)
and exits with status 1 when there is one."""
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def read_layers(path):
    """Folder -> (parent, rank among its siblings)."""
    layers = {}
    with open(path) as f:
        for rank, line in enumerate(f):
            for folder in line.split('#', 1)[0].split():
                layers[folder] = (os.path.dirname(folder), rank)
    return layers


def room_of(path, layers):
    """The deepest listed folder holding `path`, or None."""
    parts = path.split('/')[:-1]
    for depth in range(len(parts), 0, -1):
        folder = '/'.join(parts[:depth])
        if folder in layers:
            return folder
    return None


def resolve(source, target):
    local = os.path.normpath(os.path.join(os.path.dirname(source), target))
    return local if os.path.exists(os.path.join(ROOT, local)) else target


def chain(folder):
    """The folder and its listed ancestors, outermost first."""
    parts = folder.split('/')
    return ['/'.join(parts[:i]) for i in range(1, len(parts) + 1)]


def violation(source_room, target_room, layers):
    if target_room is None:
        return 'includes a file outside the listed folders'
    a, b = chain(source_room), chain(target_room)
    common = 0
    while common < min(len(a), len(b)) and a[common] == b[common]:
        common += 1
    if common == len(b):  # the target's folder holds the source
        return None if common == len(a) else 'reaches up out of its room'
    if common == len(a):
        return 'includes from a room of its own folder'
    mine, theirs = a[common], b[common]
    if mine not in layers or theirs not in layers:
        return 'involves a folder that is not listed'
    if layers[theirs][1] < layers[mine][1]:
        return None
    return f'{mine} may not include {theirs}'


def main():
    layers = read_layers(os.path.join(ROOT, 'scripts', 'include_layers'))
    tops = sorted({f.split('/')[0] for f in layers})
    with_rooms = {parent for parent, _ in layers.values() if parent}
    faults = []
    for top in tops:
        for dirpath, _, names in os.walk(os.path.join(ROOT, top)):
            for name in sorted(names):
                if not name.endswith(('.h', '.cpp')):
                    continue
                source = os.path.relpath(os.path.join(dirpath, name), ROOT)
                room = room_of(source, layers)
                if room in with_rooms:
                    faults.append(f'{source}: lies in {room} outside its rooms')
                    continue
                with open(os.path.join(ROOT, source)) as f:
                    text = f.read()
                for target in INCLUDE.findall(text):
                    resolved = resolve(source, target)
                    why = violation(room, room_of(resolved, layers), layers)
                    if why:
                        faults.append(f'{source}: #include "{target}": {why}')
    for fault in faults:
        print(fault)
    if faults:
        print(f'check_includes: {len(faults)} include(s) against scripts/include_layers')
        return 1
    print('check_includes: every include points down')
    return 0


if __name__ == '__main__':
    sys.exit(main())
