#!/usr/bin/env python3
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
#
# Does what the pages say: check-docs.py VELACTL PAGE...
#
# Each page's blocks run in order in a folder of the page's own, with velactl on the path, and with
# examples/ and build/dev/bin/ as in a checkout. A block "sh" with velactl in it must end with status 0.
# In a block "console" each line after "$ " is run, and what follows must be what it prints. A comment
# "<!-- sh: COMMANDS -->" makes ready what a block needs. "./dev WORD" must be one of its commands, and
# a link must lead to a file.
import os
import re
import subprocess
import sys
import tempfile

velactl = os.path.abspath(sys.argv[1])
root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
environment = dict(os.environ, PATH=os.path.dirname(velactl) + ":" + os.environ["PATH"], LC_ALL="C.UTF-8")
failures = []


def run(commands, folder):
    done = subprocess.run(["bash", "-eu", "-c", commands], cwd=folder, env=environment, text=True,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          timeout=60)
    return done.returncode, done.stdout


def steps(text):
    """What a page wants run: kind and text, in the page's order."""
    pattern = r"<!-- sh:\s(?P<setup>.*?)-->|^```(?P<kind>\w*)\n(?P<block>.*?)^```$"
    for match in re.finditer(pattern, text, re.M | re.S):
        if match["setup"]:
            yield "sh", match["setup"]
        elif match["kind"] == "console" or (match["kind"] == "sh" and "velactl" in match["block"]):
            yield match["kind"], match["block"]


def sessions(block):
    """Of a block "console" each command with what it is to print."""
    for part in re.split(r"^\$ ", block, flags=re.M)[1:]:
        command, _, output = part.partition("\n")
        yield command, output


def check(page):
    with open(os.path.join(root, page), encoding="utf-8") as file:
        text = file.read()
    with tempfile.TemporaryDirectory() as folder:
        os.symlink(os.path.join(root, "examples"), os.path.join(folder, "examples"))
        os.makedirs(os.path.join(folder, "build/dev"))
        os.symlink(os.path.dirname(velactl), os.path.join(folder, "build/dev/bin"))
        for kind, block in steps(text):
            if kind == "sh":
                status, output = run(block, folder)
                if status != 0:
                    yield f"status {status} of:\n{block}{output}"
                continue
            for command, expected in sessions(block):
                output = run(command, folder)[1]
                if output != expected:
                    yield f"{command}\nprints:\n{output}instead of:\n{expected}"
    known = set(re.findall(r"^  ([a-z0-9]+)", run("./dev help", root)[1], re.M))
    for word in set(re.findall(r"\./dev ([a-z0-9]+)", text)) - known:
        yield f"no command of ./dev: {word}"
    for link in set(re.findall(r"\]\(([^)#:\s]+)(?:#[^)]*)?\)", text)):
        if not os.path.exists(os.path.join(root, os.path.dirname(page), link)):
            yield f"leads nowhere: {link}"


for page in sys.argv[2:]:
    for failure in check(page):
        print(f"{page}: {failure}\n")
        failures.append(failure)
sys.exit(1 if failures else 0)
