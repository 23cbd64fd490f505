"""Shows that each rule of scripts/lint can fail, on made-up trees."""
import contextlib
import importlib.machinery
import importlib.util
import io
import pathlib
import tempfile
import unittest

LOADER = importlib.machinery.SourceFileLoader(
    "lint", str(pathlib.Path(__file__).resolve().parents[2] / "scripts/lint"))
LINT = importlib.util.module_from_spec(importlib.util.spec_from_loader("lint", LOADER))
LOADER.exec_module(LINT)
HEADER = "// What it is.\n#pragma once\n"


def rules_found(files):
    """The findings of a tree of the given files, as (path, line, rule)."""
    with tempfile.TemporaryDirectory() as folder:
        for name, text in files.items():
            path = pathlib.Path(folder, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = LINT.main([folder])
    findings = []
    for line in output.getvalue().splitlines():
        path, number, rule = line.split(":")[:3]
        findings.append((path, int(number), rule.strip()))
    assert status == (1 if findings else 0), status
    return findings


class Lint(unittest.TestCase):
    def accepts(self, path, text):
        self.assertEqual(rules_found({path: text}), [], text)

    def refuses(self, path, text, rule, line=None):
        findings = rules_found({path: text})
        self.assertEqual([(found[0], found[2]) for found in findings], [(path, rule)], text)
        if line:
            self.assertEqual(findings[0][1], line)

    def test_edges_follow_the_table(self):
        allowed = [("logic/power/a.cpp", "logic/helper/b.h"), ("logic/widget/a.cpp", "logic/sessions/b.h"),
                   ("inventory/a.cpp", "logic/mcp/b.h"), ("helper/a.cpp", "logic/helper/b.h"),
                   ("cli/a.cpp", "platform/b.h"), ("base/a.cpp", "base/b.h"), ("logic/plan/a.cpp", "base/locale/b.h")]
        for path, used in allowed:
            self.accepts(path, f'#include "{used}"\n')
        refused = [("base/a.cpp", "logic/helper/b.h"), ("base/a.cpp", "base/locale/b.h"),
                   ("logic/helper/a.cpp", "logic/power/b.h"), ("logic/sessions/a.cpp", "logic/events/b.h"),
                   ("logic/mcp/a.cpp", "logic/sessions/b.h"), ("logic/plan/a.cpp", "platform/b.h"),
                   ("inventory/a.cpp", "system/b.h"), ("system/a.cpp", "logic/helper/b.h"),
                   ("helper/a.cpp", "logic/power/b.h"), ("helper/a.cpp", "platform/b.h"),
                   ("helper/a.cpp", "base/locale/b.h"), ("platform/a.cpp", "cli/b.h"), ("cli/a.cpp", "helper/b.h"),
                   ("cli/a.cpp", "tests/cli/b.h"), ("cli/a.cpp", "neighbour.h")]
        for path, used in refused:
            self.refuses(path, f'\n#include "{used}"\n', "edge", 2)

    def test_tests_may_use_everything(self):
        self.accepts("tests/cli/a_test.cpp", '#include "helper/b.h"\n#include <nlohmann/json.hpp>\nint a = rename("", "");\n')

    def test_the_json_library_stays_in_its_file(self):
        self.refuses("logic/mcp/a.cpp", "#include <nlohmann/json.hpp>\n", "library")
        self.accepts("base/json_reader.cpp", "#include <nlohmann/json.hpp>\n")

    def test_clocks_stay_in_the_shell(self):
        for call in ("std::chrono::system_clock::now()", "steady_clock::now()", "time(nullptr)", "std::time(0)",
                     "::clock_gettime(CLOCK_REALTIME, &t)", "gettimeofday(&t, nullptr)"):
            self.refuses("logic/plan/a.cpp", f"auto a = {call};\n", "clock", 1)
            self.refuses("helper/helper.cpp", f"auto a = {call};\n", "clock", 1)
            for path in ("platform/a.cpp", "system/a.cpp", "cli/a.cpp", "helper/main_linux.cpp"):
                self.accepts(path, f"auto a = {call};\n")
        self.accepts("logic/plan/a.cpp", "Date time(int);\nauto b = event.time(0);\n")

    def test_the_environment_is_read_in_two_places(self):
        for call in ("getenv(\"HOME\")", "std::getenv(\"HOME\")", "secure_getenv(\"HOME\")"):
            self.refuses("cli/hook.cpp", f"auto a = {call};\n", "environment")
            self.accepts("platform/directories.cpp", f"auto a = {call};\n")
            self.accepts("cli/main.cpp", f"auto a = {call};\n")
        self.refuses("helper/a.cpp", "extern char** environ;\n", "environment")

    def test_nothing_asks_the_locale(self):
        for call in ("setlocale(LC_ALL, \"\")", "std::locale(\"\")", "strftime(b, 1, \"\", t)", "tolower(c)",
                     "std::toupper(c)", "std::isspace(c)", "isdigit(c)"):
            self.refuses("cli/a.cpp", f"auto a = {call};\n", "locale")
        self.accepts("cli/a.cpp", "bool isDigit(char c);\nauto a = text.isspace(1);\n")

    def test_only_base_locks_and_renames(self):
        for call in ("flock(1, 2)", "::flock(1, 2)", "std::rename(a, b)", "::renameat2(1, a, 2, b, 0)",
                     "std::filesystem::rename(a, b)"):
            self.refuses("logic/mcp/a.cpp", f"auto a = {call};\n", "files")
            self.accepts("base/file.cpp", f"auto a = {call};\n")

    def test_platform_macros_stay_in_suffixed_files(self):
        for macro in ("__APPLE__", "__linux__", "_WIN32"):
            self.refuses("platform/a.cpp", f"#ifdef {macro}\n#endif\n", "platform", 1)
            self.accepts("platform/a_linux.cpp", f"#ifdef {macro}\n#endif\n")
            self.accepts("platform/a_macos.mm", f"#ifdef {macro}\n#endif\n")

    def test_comments_and_texts_are_no_code(self):
        self.accepts("logic/plan/a.cpp", '// getenv("A")\n/* flock(1) */\nauto a = "tolower(c) __linux__";\n'
                                         'auto b = R"x(std::rename(a, b))x";\n')
        self.refuses("logic/plan/a.cpp", "auto a = '\"';\nauto b = tolower(c);\n", "locale", 2)
        self.refuses("logic/plan/a.cpp", "auto a = 1'000;\nauto b = tolower('c');\n", "locale", 2)

    def test_a_file_has_fewer_than_400_lines(self):
        self.accepts("base/a.cpp", "\n" * 399)
        self.refuses("base/a.cpp", "\n" * 400, "file-length")
        self.refuses("tests/base/a_test.cpp", "\n" * 400, "file-length")

    def test_a_function_has_fewer_than_70_lines(self):
        bodies = ["namespace brindle {{\nint f(int a) {{\n{}}}\n}}\n", "class A {{\n int f(int a = 1) const {{\n{}}}\n}};\n",
                  "extern \"C\" {{\nint f(int a) {{\n{}}}\n}}\n", "\nTEST(A, B) {{\n{}}}\n",
                  "\nbool A::operator==(const A& b) const {{\n{}}}\n", "struct A {{\nA() : a(g()) {{\n{}}}\n}};\n"]
        for body in bodies:
            self.accepts("base/a.cpp", body.format("  if (a) { g({1}); }\n" * 67))
            self.refuses("base/a.cpp", body.format("  if (a) { g({1}); }\n" * 68), "function-length", 2)

    def test_a_table_is_no_function(self):
        self.accepts("base/a.cpp", "constexpr auto k = std::to_array<int>({\n" + "  {1, f(2)},\n" * 100 + "});\n")
        self.accepts("base/a.cpp", "struct A {\n" + "  int a = f(1);\n" * 100 + "};\n")

    def test_a_header_begins_with_a_comment(self):
        self.accepts("base/a.h", HEADER)
        self.refuses("base/a.h", "#pragma once\n// Too late.\n", "header-comment")
        self.refuses("base/a.h", "// What it is.\n", "pragma-once")

    def test_a_header_opens_no_namespace(self):
        self.refuses("base/a.h", HEADER + "using namespace std;\n", "using-namespace", 3)
        self.accepts("base/a.h", HEADER + "using std::string;\n")
        self.accepts("base/a.cpp", "using namespace std;\n")

    def test_an_excuse_needs_its_rule_and_a_reason(self):
        self.accepts("cli/a.cpp", "// lint-allow: locale the screen needs the character set\nauto a = setlocale(1, 0);\n")
        self.accepts("cli/a.cpp", "auto a = setlocale(1, 0);  // lint-allow: locale the screen needs it\n")
        self.refuses("cli/a.cpp", "auto a = setlocale(1, 0);  // lint-allow: locale\n", "locale")
        self.refuses("cli/a.cpp", "auto a = setlocale(1, 0);  // lint-allow: clock because\n", "locale")
        self.refuses("cli/a.cpp", "// lint-allow: locale far away\n\nauto a = setlocale(1, 0);\n", "locale")

    def test_an_empty_tree_is_no_success(self):
        with tempfile.TemporaryDirectory() as folder:
            with contextlib.redirect_stderr(io.StringIO()):
                self.assertEqual(LINT.main([folder]), 2)


if __name__ == "__main__":
    unittest.main()
