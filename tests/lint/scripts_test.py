"""Shows that the verdicts of scripts/bench and the breaks of scripts/mutate are what they say."""
import importlib.machinery
import importlib.util
import pathlib
import tempfile
import unittest

SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "scripts"


def load(name):
    loader = importlib.machinery.SourceFileLoader(name, str(SCRIPTS / name))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(name, loader))
    loader.exec_module(module)
    return module


BENCH = load("bench")
MUTATE = load("mutate")


class Budgets(unittest.TestCase):
    def missed(self, medians, *lines):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "budgets.txt")
            path.write_text("# a comment\n\n" + "\n".join(lines))
            budgets = BENCH.read_budgets(path)
        return any(missed for _, missed in BENCH.judge("p", medians, budgets))

    def test_a_figure_may_be_as_large_as_its_budget_and_no_larger(self):
        self.assertFalse(self.missed({"a": (4.0, "ms")}, "p a 4"))
        self.assertTrue(self.missed({"a": (4.01, "ms")}, "p a 4"))

    def test_a_ratio_is_to_the_other_figure_of_the_run(self):
        self.assertFalse(self.missed({"a": (1.3, "ms"), "b": (1.0, "ms")}, "p a x1.3:b"))
        self.assertTrue(self.missed({"a": (1.4, "ms"), "b": (1.0, "ms")}, "p a x1.3:b"))
        self.assertTrue(self.missed({"a": (1.4, "ms")}, "p a x1.3:b"))

    def test_a_budget_without_a_figure_is_missed(self):
        self.assertTrue(self.missed({"b": (1.0, "ms")}, "p a 4"))

    def test_budgets_of_other_programs_do_not_count(self):
        self.assertFalse(self.missed({"a": (9.0, "ms")}, "q a 4"))

    def test_a_line_that_is_no_budget_is_refused(self):
        for line in ("p a", "p a four", "p a xb:1", "p a 4 5"):
            with self.assertRaises(SystemExit):
                self.missed({}, line)


class Mutants(unittest.TestCase):
    def breaks(self, line, texts=()):
        return {(mutant.kind, mutant.after.strip()) for mutant in MUTATE.mutants_of_line("a", 0, "  " + line, texts)}

    def test_comparisons_move_by_one_or_turn_round(self):
        self.assertEqual(self.breaks("if (a < b) {"), {("operator", "if (a <= b) {")})
        self.assertEqual(self.breaks("if (a >= b) {"), {("operator", "if (a > b) {")})
        self.assertEqual(self.breaks("if (a == b) {"), {("operator", "if (a != b) {")})
        self.assertEqual(self.breaks("if (a && b) {"), {("operator", "if (a || b) {")})

    def test_template_brackets_are_no_comparison(self):
        self.assertEqual(self.breaks("const std::vector<int> a = f<A>(b);"), set())

    def test_numbers_move_by_one(self):
        self.assertEqual(self.breaks("return 262'144;"), {("number", "return 262145;"), ("number", "return 262143;")})
        self.assertEqual(self.breaks("return 0.5;"), {("number", "return 1.5;"), ("number", "return -0.5;")})
        self.assertEqual(self.breaks("return a1 + int64_t(b);"), {("operator", "return a1 - int64_t(b);")})

    def test_statements_are_dropped_but_declarations_are_not(self):
        self.assertEqual(self.breaks("sort(a);"), {("statement", ";")})
        self.assertEqual(self.breaks("a.b = c;"), {("statement", ";")})
        self.assertEqual(self.breaks("++a;"), set())
        self.assertEqual(self.breaks("return f(a);"), set())
        self.assertEqual(self.breaks("const int a = f(b);"), set())

    def test_texts_are_swapped_with_others_of_the_file(self):
        self.assertEqual(self.breaks('return "a";', ["a", "b"]), {("text", 'return "b";')})
        self.assertEqual(self.breaks('return "a";', ["a"]), {("text", 'return "a~";')})

    def test_comments_texts_and_directives_are_left_alone(self):
        self.assertEqual(self.breaks("// a < b, 3"), set())
        self.assertEqual(self.breaks("#define A 3"), set())
        self.assertEqual(self.breaks('return "a < 3";', ["a < 3"]), {("text", 'return "a < 3~";')})

    def test_conditions_are_turned_round(self):
        self.assertEqual(self.breaks("if (!a) return b;"), {("negation", "if (a) return b;")})
        self.assertEqual(self.breaks("return true;"), {("boolean", "return false;")})

    def test_a_file_is_tried_by_the_programs_of_its_folder(self):
        programs = {"logic_power_test", "logic_power_property_test", "logic_plan_test", "lint_tree"}
        self.assertEqual(MUTATE.programs_for("logic/power/a.cpp", programs),
                         ["logic_power_property_test", "logic_power_test"])
        self.assertEqual(MUTATE.programs_for("logic/widget/a.cpp", programs), [])


if __name__ == "__main__":
    unittest.main()
