"""Runs the commands shown in the documents and compares their output."""

import os
import re
import shlex
import shutil
import subprocess
import unittest

from harness import BUILD, NO_MOUNTS, PROJECT, SystemTest, main
from tree_value import STEPS


def read(name):
    with open(os.path.join(PROJECT, name), encoding="utf-8") as file:
        return file.read()


def shape(output):
    """Replaces values and temporary directories by placeholders."""
    return re.sub(r"\b([0-9a-f]{16}|[0-9a-f]{8})\b", "VALUE", re.sub(r'"\S*/tmp\.\w+', '"WORK', output))


class Documents(SystemTest):
    root = PROJECT

    def run_shell(self, script, stderr=None):
        programs = f"{BUILD}/Executables/NerixVerifierHash:{BUILD}/Executables/NerixHost"
        environment = {**os.environ, "TMPDIR": self.work, "PATH": f"{programs}:{os.environ['PATH']}"}
        return subprocess.run(["bash", "-euo", "pipefail", "-c", script], cwd=self.root, env=environment, check=True,
                              stdout=subprocess.PIPE, stderr=stderr, text=True).stdout

    @unittest.skipIf(NO_MOUNTS, NO_MOUNTS)
    def test_examples_that_show_their_output(self):
        for document, examples in (("README.md", 3), ("docs/fleet.md", 2), ("docs/host.md", 1)):
            blocks = re.findall(r"```sh\n(.*?)```\n(?:\n((?:    [^\n]*\n)+))?", read(document), re.DOTALL)
            example = [(commands, shown) for commands, shown in blocks if shown]
            self.assertEqual(len(example), examples, f"blocks of commands with output in {document}")
            script = "".join(commands for commands, _ in example).replace("sudo ", "")  # here it is root
            output = self.run_shell(script, stderr=subprocess.STDOUT)
            self.assertEqual(shape(output), shape("".join(shown for _, shown in example).replace("    ", "")), document)

    @unittest.skipIf(not BUILD.endswith("release"), "it builds the release, so it runs with that build only")
    def test_builds_of_the_readme(self):
        # Builds a copy, because the commands write beside the sources.
        self.root = os.path.join(self.work, "project")
        shutil.copytree(PROJECT, self.root, ignore=shutil.ignore_patterns("build", ".git"))
        text = read("README.md")
        first, *_, device = re.findall(r"```sh\n(.*?)```", text, re.DOTALL)
        # Leaves out scripts/test, which runs this test.
        self.assertRegex(self.run_shell(first.split("scripts/test")[0]), r"\A[0-9a-f]{16}\n\Z")
        install = re.search(r"`sudo (cmake --install .*?)`", text).group(1)
        self.run_shell(f"DESTDIR={self.work} {install}")
        self.run_shell(re.search(r"`(scripts/packages package\s+&& cpack .*?)`", text).group(1))
        facts = self.run_shell("dpkg-deb --field build/package/*.deb && dpkg-deb --contents build/package/*.deb")
        for part in ("libboost-filesystem", "libssl", "bin/NerixVerifierHash", "bin/NerixHost", "man1/NerixHost.1.gz",
                     "bash-completion/completions/NerixHost", "zsh/vendor-completions/_NerixHost",
                     "fish/vendor_completions.d/NerixHost.fish", "doc/nerix-verifier-hash/README.md",
                     "changelog.Debian.gz", *re.findall(r"\]\((docs/[\w-]+\.md)\)", text)):
            self.assertIn(part, facts)
        # Links the unit tests' fake platform, which has every function of the platform.
        platform = f"{BUILD}/Tests/Fakes/CMakeFiles/Tests_Fakes.dir/FakePlatform.cpp.o"
        self.run_shell(device.replace("LIBRARY;LIBRARY", platform))
        fake = self.run_shell("build/device/Executables/NerixVerifierHash/NerixVerifierHash --path docs")
        self.assertEqual(fake.strip(), self.value(os.path.join(self.root, "docs")))
        self.assertEqual(sorted(os.listdir(self.root)), sorted({*os.listdir(PROJECT), "build"} - {".git"}),
                         "files outside build")

    def completions(self, *words):
        """Returns what bash proposes for the last word, which may be empty."""
        quoted = " ".join(map(shlex.quote, words))
        script = "source docs/NerixHost.completion; compopt() { :; }; " \
                 f"COMP_WORDS=({quoted}); COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1)); " \
                 f"$(complete -p {words[0]} | sed 's/.*-F \\(\\w*\\).*/\\1/'); printf '%s\\n' \"${{COMPREPLY[@]}}\""
        return set(self.run_shell(script).split())

    def test_every_option_is_completed_and_in_the_manual(self):
        shells = {"zsh": read("docs/NerixHost.zsh"), "fish": read("docs/NerixHost.fish")}
        for command in ("scan", "compare", "settings"):
            options = set(re.findall(r"^ +(?:-\w \[ )?--([a-z-]+)", self.run_host(command, "--help").stdout.decode(), re.M))
            with self.subTest(command):
                self.assertEqual(self.completions("NerixHost", command, "--"), {f"--{name}" for name in {*options, "help"}})
                for shell, form in (("zsh", "--{}[}}[]"), ("fish", " -l {} ")):
                    missing = {name for name in options if not re.search(form.format(name), shells[shell])}
                    self.assertEqual(missing, set(), f"options that {shell} does not complete")
                manual = read("docs/NerixHost.1").replace("\\-", "-")
                self.assertEqual({name for name in options if f"--{name}" not in manual}, set(), "not in the manual")

    def test_bash_completes_commands_actions_and_methods(self):
        for words, expected in ((("NerixHost", "s"), {"scan", "settings"}), (("NerixHost", "settings", "w"), {"watch"}),
                                (("NerixHost", "compare", "--color", "a"), {"auto", "always"}),
                                (("NerixHost", "scan", "-H", ""), set(STEPS)),
                                (("NerixVerifierHash", "--hash", ""), set(STEPS)),
                                (("NerixVerifierHash", "-"), {"--path", "--hash", "--help"})):
            with self.subTest(words):
                self.assertEqual(self.completions(*words), expected)

    def test_every_hash_method_is_documented(self):
        for document in ("docs/NerixVerifierHash.1", "docs/NerixHost.1", "docs/hash-definition.md"):
            words = set(re.findall(r"\w+", read(document)))
            self.assertEqual(set(STEPS) - words, set(), document)

    def test_worked_example_of_the_definition(self):
        text = read("docs/hash-definition.md")
        step, value, values = STEPS["md5"], 0, []  # values: of each row of the table
        for over, shown in re.findall(r"^\| `(.*)` \| `([0-9a-f]{16})`", text, re.MULTILINE):
            value = step(0 if over.startswith("/example") else value, over.replace("⏎", "\n").encode())
            self.assertEqual(f"{value:016x}", shown, over)
            values.append(value)
        self.assertEqual(len(values), 9, "rows")
        file, link = values[2], values[5]  # the last step of each entry gives its value
        self.assertIn(f"`{file}⏎{link}⏎`", text)
        command = re.search(r"^    \$ (.*)\n    ([0-9a-f]{16})$", text, re.MULTILINE)
        self.assertEqual(self.run_shell(command.group(1)).strip(), command.group(2))


if __name__ == "__main__":
    main()
