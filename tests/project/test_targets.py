"""Prints the build targets of the tests that `ctest --show-only=json-v1` lists on standard input.

A test program is named after its target, so a build can be limited to the tests that will run.
"""
import json
import os
import sys


def targets(listing):
    """The distinct names of the programs that the listed tests run, in order."""
    names = {}
    for test in listing["tests"]:
        for word in test["command"]:
            name = os.path.basename(word)
            if name.startswith("test_"):
                names[name] = None
    return list(names)


if __name__ == "__main__":
    print("\n".join(targets(json.load(sys.stdin))))
