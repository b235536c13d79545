#!/usr/bin/env python3
"""Each mutation operator creates exactly the expected mutants of short texts, and a run detects what it
claims to detect."""

import random
import sys
import textwrap
import unittest

sys.dont_write_bytecode = True  # leaves no files in the tree
import cores
import cpp_tokens
import mutate
import mutators
import trees


def mutants(text, operator, parts=None):
    """The operator's mutants of a text, in order."""
    return [mutators.mutated(text, place, replacement)
            for place in mutators.places(text, parts) if place.operator == operator
            for replacement in place.replacements]


def of_body(operator, statements):
    """The operator's mutants of the statements of a function."""
    before, after = "void f() {\n", "\n}\n"
    made = mutants(before + statements + after, operator)
    return [text.removeprefix(before).removesuffix(after) for text in made]


class OperatorsTest(unittest.TestCase):
    def test_relations(self):
        for sign, others in {"<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="],
                             ">=": [">", "<"], "==": ["!="], "!=": ["=="]}.items():
            self.assertEqual(of_body("relation", f"return a {sign} b;"),
                             [f"return a {other} b;" for other in others])

    def test_brackets_of_templates_are_not_relations(self):
        self.assertEqual(of_body("relation", "std::set<int> a = b<c>(d->e) << f >> g;"), [])

    def test_negated_conditions(self):
        self.assertEqual(of_body("condition", "if (a) b();"), ["if (!(a)) b();"])
        self.assertEqual(of_body("condition", "while (f(a) && b < c) d();"),
                         ["while (!(f(a) && b < c)) d();"])
        self.assertEqual(of_body("condition", "if (const int a = f(b == c); g(a)) b();"),
                         ["if (const int a = f(b == c); !(g(a))) b();"])

    def test_a_condition_that_declares_or_compares_is_not_negated(self):
        self.assertEqual(of_body("condition", "if (const auto a = f(b)) b();"), [])
        self.assertEqual(of_body("condition", "if (a < f(b && c)) b();"), [])
        self.assertEqual(of_body("condition", "for (;;) f(c ? d : e);"), [])

    def test_logic(self):
        self.assertEqual(of_body("logic", "return a && b || c;"),
                         ["return a || b || c;", "return a && b && c;"])
        self.assertEqual(of_body("logic", "auto&& a = b;"), [])

    def test_sums(self):
        self.assertEqual(of_body("sum", "a += b + c - d;"),
                         ["a -= b + c - d;", "a += b - c - d;", "a += b + c + d;"])
        self.assertEqual(of_body("sum", "a = -b * c;"), [])

    def test_constants(self):
        self.assertEqual(of_body("constant", "f(0);"), ["f(1);"])
        self.assertEqual(of_body("constant", "f(1);"), ["f(0);", "f(2);"])
        self.assertEqual(of_body("constant", "f(1'000u);"), ["f(0u);", "f(999u);", "f(1001u);"])
        self.assertEqual(of_body("constant", "f(0x80);"), ["f(0x0);", "f(0x7F);", "f(0x81);"])
        self.assertEqual(of_body("constant", "return path[1];"), ["return path[0];", "return path[2];"])

    def test_numbers_that_are_not_values(self):
        self.assertEqual(of_body("constant", "char a[12]; std::array<int, 4> b; f<2>(x1, 0.5);"), [])
        self.assertEqual(mutants("struct A { virtual void f() const = 0; };", "constant"), [])

    def test_bools(self):
        self.assertEqual(of_body("bool", "return true; a = false; truely();"),
                         ["return false; a = false; truely();", "return true; a = true; truely();"])

    def test_results(self):
        self.assertEqual(of_body("return", "if (a) return; b();"), ["if (a) ; b();"])
        self.assertEqual(of_body("return", "return f(a);"), ["return {};"])
        self.assertEqual(of_body("return", "return XERR_SUCCESS;"), ["return XERR_FAILURE;"])
        self.assertEqual(of_body("return", "return XERR_INVAL;"), ["return XERR_SUCCESS;"])

    def test_results_that_are_empty_already_or_belong_to_others(self):
        for result in ("{}", "nullptr", "0", "true"):
            self.assertEqual(of_body("return", f"return {result};"), [])

    def test_calls_and_assignments_are_deleted(self):
        for statement in ("f();", "a.b(c)->d();", "std::f(a);", "a = b;", "a[1].b += c;", "*a = b;",
                          "++a;", "a++;", "f([&] { g(a); });", "static_cast<void>(f(a));", "a.b_ = {};",
                          "(*a)[b].c = d;"):
            self.assertEqual(of_body("statement", statement)[:1], [";"], statement)
            self.assertEqual(of_body("statement", f"if (a) {statement}")[:1], ["if (a) ;"])
            self.assertEqual(of_body("statement", f"int a;\nelse {statement}")[:1],
                             ["int a;\nelse ;"])
        self.assertEqual(of_body("statement", "switch (a) {\ncase A::B:\nf();\nbreak;\n}"),
                         ["switch (a) {\ncase A::B:\n;\nbreak;\n}"])

    def test_statements_of_lambdas_are_deleted(self):
        self.assertEqual(of_body("statement", "const auto a = [&b] { f(); };"),
                         ["const auto a = [&b] { ; };"])

    def test_other_statements_stay(self):
        for statement in ("int a = f();", "const auto a = f();", "std::string a(b);", "Line a{b};",
                          "std::lock_guard<std::mutex> a(b);", "char* a = f(b);", "A& a = f();",
                          "return f();", "using A = B;", "throw f();", "for (f(); g(); ++a) return;"):
            self.assertEqual(of_body("statement", statement), [], statement)

    def test_no_declaration_of_a_class_or_namespace_is_deleted(self):
        text = textwrap.dedent("""\
            namespace {
            constexpr int kA = f(3);
            void f(int a);
            enum class B { C, D };
            class E : public F {
             public:
                E(int a) : a_(a) {}
                int f() const;
                int a_ = g();
            };
            constexpr G kG[] = {f(1), f(2)};
            }
            """)
        self.assertEqual(mutants(text, "statement"), [])

    def test_jumps(self):
        self.assertEqual(of_body("jump", "for (;;) break;"), ["for (;;) continue;", "for (;;) ;"])
        self.assertEqual(of_body("jump", "for (;;) continue;"), ["for (;;) break;", "for (;;) ;"])

    def test_steps(self):
        self.assertEqual(of_body("step", "for (;; ++i) j--;"),
                         ["for (;; --i) j--;", "for (;; ++i) j++;"])


NOTHING_TO_CHANGE = r'''
// if (a < 1 && b) return true; else a = b + 1;
/* ++a; break; f(0); */
#include "a/b < c && d + 1"
#define A(x)    \
    if (x == 1) \
    return true
static_assert(sizeof(int) + 1 == 5 && true);
void f() {
    g("if (a < 1 && b) \" + 1; return true;", '+', '"', "\\", R"(a" < 1 && true)");  // ; a = 1 + 1;
}
void log(const char* format, ...) XPRINTF_LIKE(1, 2);
'''


class NoMutantsTest(unittest.TestCase):
    def test_in_comments_strings_directives_and_assertions(self):
        places = mutators.places(NOTHING_TO_CHANGE)
        self.assertEqual([place.operator for place in places], ["statement"])
        self.assertTrue(NOTHING_TO_CHANGE[places[0].start:].startswith('g("if'))
        self.assertTrue(NOTHING_TO_CHANGE[:places[0].end].endswith('true)");'))

    def test_in_else_branches_of_the_preprocessor(self):
        text = "int f() {\n#if A\n#if B\nreturn 1;\n#else\nreturn 2;\n#endif\n#else\nreturn 3;\n#endif\nreturn 4;\n}"
        self.assertEqual(mutants(text, "constant"),
                         [text.replace("return 1", f"return {one}") for one in (0, 2)] +
                         [text.replace("return 4", f"return {one}") for one in (0, 3, 5)])


class PartsTest(unittest.TestCase):
    TEXT = textwrap.dedent("""\
        int f(int a) { return a + 1; }
        class C {
            int g() const { return 2; }
        };
        int C::h() const XTS_REQUIRES(lock) { return f(3); }
        """)

    def test_are_the_classes_and_functions_named(self):
        for names, numbers in ((["f"], "1"), (["C"], "2"), (["h"], "3"), (["f", "C"], "12")):
            places = [place for place in mutators.places(self.TEXT, names)
                      if place.operator == "constant"]
            self.assertEqual("".join(self.TEXT[one.start] for one in places), numbers)

    def test_must_exist(self):
        for name in ("lock", "k"):
            self.assertRaises(ValueError, mutators.places, self.TEXT, [name])


class SourcesTest(unittest.TestCase):
    def test_each_core_is_read_to_its_end(self):
        for path in cores.CORES:
            text = mutate.source(path)
            self.assertEqual("".join(token.text for token in cpp_tokens.all_tokens(text)), text)
            cpp_tokens.Code(text)

    def test_each_core_has_places_on_lines_of_code(self):
        for path, places in mutate.all_places().items():
            self.assertGreater(len(places), 0, path)
            for place in places:
                line = mutate.source(path)[:place.start].split("\n")[-1].strip()
                self.assertFalse(line.startswith(("//", "#", "static_assert")), (path, line))

    def test_each_mutant_differs_in_its_place_only(self):
        for path, places in mutate.all_places().items():
            text = mutate.source(path)
            for place in places:
                for replacement in place.replacements:
                    self.assertNotEqual(text[place.start:place.end], replacement, (path, place))

    def test_each_core_has_tests(self):
        folders = {path.name for path in (mutate.trees.ROOT / "tests").iterdir()}
        for path in cores.CORES:
            own = cores.tests_of(path)[0]
            self.assertIn(own.removesuffix("_test").removesuffix("_layer"), folders)
            self.assertIn(path.split("/")[1], folders)


class ChoiceTest(unittest.TestCase):
    def test_is_in_proportion_to_the_places(self):
        places = {"a": range(10), "b": range(30), "c": range(61)}
        self.assertEqual(mutate.quotas(places, 20), {"a": 2, "b": 6, "c": 12})
        self.assertEqual(sum(mutate.quotas(mutate.all_places(), 200).values()), 200)

    def test_is_the_same_for_the_same_seed(self):
        self.assertEqual(mutate.chosen_work(200, "1"), mutate.chosen_work(200, "1"))
        self.assertNotEqual(mutate.chosen_work(200, "1"), mutate.chosen_work(200, "2"))

    def test_takes_each_place_once_before_a_second_change(self):
        places = mutators.places("int f() { return a < b ? 1 : 2; }")
        chosen = mutate.candidates(places, random.Random(1))
        self.assertEqual({place for place, _ in chosen[:len(places)]}, set(places))
        self.assertEqual(len(set(chosen)), sum(len(place.replacements) for place in places))


PASSED = "[==========] 12 tests from 3 test suites ran. (5 ms total)\n[  PASSED  ] 12 tests.\n"
FAILED = "a.cpp:1: Failure\n[  FAILED  ] Conf.Reads (0 ms)\n" + PASSED


class ResultTest(unittest.TestCase):
    def test_the_result_of_a_test_program(self):
        self.assertEqual(trees.judged(PASSED, 0), (12, ""))
        self.assertEqual(trees.judged(FAILED, 1), (12, "Conf.Reads"))
        self.assertEqual(trees.judged("", -11), (0, "ended with -11"))
        self.assertEqual(trees.judged("", 0), (0, "ended with 0"))  # ended in the middle
        self.assertEqual(trees.judged(PASSED, 1), (12, "ended with 1"))
        self.assertEqual(trees.judged("", None), (0, "timeout"))

    def test_a_hanging_program_is_stopped_with_its_children(self):
        output, code = trees.run_group(["sh", "-c", "sleep 1000 & echo $!; wait"], 0.5, None)
        self.assertEqual((output, code), ("", None))

    def test_the_share_includes_killed_and_hanging_mutants(self):
        results = ["killed"] * 17 + ["timeout", "survived", "survived"]
        lines, share = mutate.summary([{"path": "a", "result": result} for result in results])
        self.assertEqual(share, 0.9)
        self.assertEqual(lines[-1], "20 mutants: 18 killed (1 of them by not ending), "
                                    "2 survived: 90.0 %")


class Tree:
    """A fake tree that defines which changes compile and which a test detects."""

    def __init__(self):
        self.texts = []
        self.restored = []

    def prepare(self):
        pass

    def try_mutant(self, path, text):
        self.texts.append(text)
        if "return {}" in text:
            return "does not compile", ""
        return ("survived", "") if "0x" in text else ("killed", "conf_test A.B")

    def restore(self, path):
        self.restored.append(path)


class WorkTest(unittest.TestCase):
    def test_a_mutant_that_does_not_compile_is_replaced_and_not_counted(self):
        path = "Source/conf/ConfNumber.cpp"
        places = mutators.places(mutate.source(path))
        mutants = mutate.candidates(places, random.Random(1))
        refused = sum(replacement == "return {};" for _, replacement in mutants)
        self.assertGreater(refused, 0)
        tree = Tree()
        jobs = mutate.Jobs([(path, len(mutants) - refused, mutants)], 0)
        done = jobs.run([tree])
        self.assertEqual(len(done), len(mutants) - refused)
        self.assertEqual({one["result"] for one in done}, {"killed"})
        self.assertNotIn(mutate.source(path), tree.texts)
        self.assertEqual(tree.restored, [path])

    def test_an_error_in_a_tree_ends_the_run(self):
        tree = Tree()
        tree.prepare = lambda: (_ for _ in ()).throw(SystemExit("error: fails without any change"))
        with self.assertRaisesRegex(SystemExit, "without any change"):
            mutate.Jobs([], 0).run([tree])

    def test_the_report_has_the_lines_before_and_after(self):
        text = "int f() {\n    return a\n        + 1;  // b\n}\n"
        place = [one for one in mutators.places(text) if one.operator == "sum"][0]
        one = mutate.described("f.cpp", text, place, "-", "killed", "conf_test A.B")
        self.assertEqual(mutate.line_of(one),
                         "f.cpp:3 sum: killed by conf_test A.B: + 1; // b -> - 1; // b")


if __name__ == "__main__":
    unittest.main()
