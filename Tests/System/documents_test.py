"""The commands of the documents run, and say what the documents show."""

import os
import re
import subprocess

from harness import BUILD, SystemTest, main
from tree_value import STEPS

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def read(name):
    with open(os.path.join(ROOT, name), encoding="utf-8") as file:
        return file.read()


class Documents(SystemTest):
    def run_shell(self, script):
        programs = ":".join(os.path.join(BUILD, "Executables", name)
                            for name in ("NerixVerifierHash", "NerixHostSettings"))
        environment = {**os.environ, "PATH": f"{programs}:{os.environ['PATH']}"}
        return subprocess.run(["bash", "-euo", "pipefail", "-c", script], cwd=ROOT, env=environment, check=True,
                              stdout=subprocess.PIPE, text=True).stdout

    def test_commands_of_the_readme(self):
        blocks = re.findall(r"```sh\n(.*?)```", read("README.md"), re.DOTALL)
        first, example = blocks[0], "".join(blocks[1:])
        # scripts/test is what runs this; scripts/verify builds a tree of its own, once, from the release.
        self.assertIn("scripts/test ", first)
        if BUILD.endswith("release"):
            self.assertRegex(self.run_shell(first.split("scripts/test")[0]), r"\A[0-9a-f]{16}\n\Z")
        self.run_shell("rm -rf /tmp/nerix-example")
        self.addCleanup(self.run_shell, "rm -rf /tmp/nerix-example")
        output = self.run_shell(example)
        # Two different values, four lines of difference for the file, etc and the root, the store.
        self.assertRegex(output, re.compile(
            r"\A([0-9a-f]{16})\n(?!\1)([0-9a-f]{16})\n1,2c1,2\n(< [0-9a-f]{16} .*\n){2}---\n(> [0-9a-f]{16} .*\n){2}"
            r"4c4\n.*\n---\n.*\n[0-9a-f]{8}\ndb/menu/.* = [0-9a-f]{8}\nmemory/.* = 100\.0\nmemory/.* = inactive\n\Z"))

    def test_worked_example_of_the_definition(self):
        text = read("docs/hash-definition.md")
        step, value, values = STEPS["md5"], 0, []
        for over, shown in re.findall(r"^\| `(.*)` \| `([0-9a-f]{16})`", text, re.MULTILINE):
            value = step(0 if over.startswith("/example") else value, over.replace("⏎", "\n").encode())
            self.assertEqual(f"{value:016x}", shown, over)
            values.append(value)
        self.assertEqual(len(values), 9)
        self.assertIn(f"`{values[2]}⏎{values[5]}⏎`", text)
        command = re.search(r"^    \$ (.*)\n    ([0-9a-f]{16})$", text, re.MULTILINE)
        self.assertEqual(self.run_shell(command.group(1)).strip(), command.group(2))


if __name__ == "__main__":
    main()
