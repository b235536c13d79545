#!/usr/bin/env python3
"""The Python binding over a library that writes down how it was called: python_test.py LIBRARY"""

import ctypes
import gc
import inspect
import pathlib
import re
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "bindings" / "python"))
import qxbridge  # noqa: E402
from qxbridge import AppInstalled, Bridge, BridgeError, Callbacks  # noqa: E402

LIBRARY = sys.argv.pop(1)
fake = ctypes.CDLL(LIBRARY)
fake.fakeCalls.restype = ctypes.c_char_p
fake.fakeClient.restype = ctypes.c_char_p


# Functions whose method has another name than theirs, or that have none.
METHODS = {"bridgeConfGetInstances": "instances", "bridgeGetInstalledApps": "apps",
           "bridgePlrShutdown": "shutdown_player", "bridgeRegisterCallbacks": "register",
           "bridgeApiInit": None, "bridgeApiInitEx": None, "bridgeApiFini": None,
           "bridgeFreeMemory": None}


def method_of(bridge, function):
    """bridgeConfGetBool -> conf.get_bool; bridgeLaunchApp -> launch_app"""
    name = METHODS.get(function) or re.sub(r"(?<!^)([A-Z])", r"_\1", function[len("bridge"):]).lower()
    if function not in METHODS and name.startswith("conf_"):
        return getattr(bridge.conf, name[len("conf_"):])
    return getattr(bridge, name)


def arguments_of(method):
    """A value for each parameter, by its type: a text's is its name."""
    values = {int: 7, bool: True, Callbacks: Callbacks()}
    return [values.get(one.annotation, one.name)
            for one in inspect.signature(method).parameters.values()]


class PythonTest(unittest.TestCase):
    def setUp(self):
        fake.fakeReset()
        fake.fakeAnswer(0)
        self.bridge = self.first()
        self.bridge.init("Helper")
        self.taken()

    def first(self):
        """A bridge as in a process of its own: the one that is there has ended."""
        qxbridge._life = qxbridge._Life()
        return Bridge(LIBRARY)

    def tearDown(self):
        self.bridge.fini()
        self.assertEqual(fake.fakeLiveTexts(), 0)

    def taken(self):
        """The calls since the last time."""
        lines = fake.fakeCalls().decode().splitlines()
        fake.fakeReset()
        return lines

    def fails(self, operation, code, call, *values):
        with self.assertRaises(BridgeError) as caught:
            call(*values)
        self.assertEqual((caught.exception.operation, caught.exception.code), (operation, code))

    def test_initialisation_and_end(self):
        bridge = self.first()
        with bridge:
            bridge.init("Launcher")
            bridge.init("Helper", no_conf_file=True)
            bridge.init("Helper", log_file="C:\\ü.log")
        bridge.fini()
        self.assertEqual(self.taken(), [
            "bridgeApiInit Launcher", "bridgeApiInitEx Helper 1 0 (null)",
            "bridgeApiInitEx Helper 0 0 C:\\ü.log", "bridgeApiFini"])

    def test_a_failed_initialisation_needs_no_end(self):
        fake.fakeAnswer(22)
        with self.first() as bridge:
            self.fails("bridgeApiInit", 22, bridge.init, "Nobody")
        self.assertEqual(self.taken(), ["bridgeApiInit Nobody"])

    def refused(self, words, call, *values):
        with self.assertRaisesRegex(RuntimeError, words):
            call(*values)

    def test_a_second_bridge_is_refused_and_the_first_keeps_its_callbacks(self):
        seen = []
        self.bridge.register(self.collecting(seen))
        other = Bridge(LIBRARY)
        self.refused("another Bridge", other.init, "Launcher")
        self.refused("call init", other.register, Callbacks())
        other.fini()
        fake.fakeSend(1)
        self.assertEqual(len(seen), 9)
        self.assertEqual(self.taken(), ["bridgeRegisterCallbacks"])

    def test_after_the_end_nothing_starts_again(self):
        self.bridge.fini()
        for bridge in (self.bridge, Bridge(LIBRARY)):
            self.refused("once per process", bridge.init, "Helper")
            self.refused("has ended", bridge.register, Callbacks())
            self.refused("has ended", bridge.instances)
            bridge.fini()
        self.assertEqual(self.taken(), ["bridgeApiFini"])

    def test_the_end_in_a_callback_is_refused_and_events_go_on(self):
        seen, raised = [], []
        hook, sys.unraisablehook = sys.unraisablehook, lambda one: raised.append(str(one.exc_value))
        try:
            self.bridge.register(self.collecting(seen)._replace(
                app_installed=lambda _: self.bridge.fini()))
            fake.fakeSend(1)
        finally:
            sys.unraisablehook = hook
        self.assertEqual(raised, ["fini() must not be called inside a callback"])
        self.assertEqual(len(seen), 8)
        self.bridge.conf.commit()
        self.bridge.fini()
        self.assertEqual(self.taken(), ["bridgeRegisterCallbacks", "bridgeConfCommit", "bridgeApiFini"])

    def test_before_the_start_and_after_the_end_nothing_reaches_the_library(self):
        bridge = self.first()
        calls = [lambda: bridge.conf.get_bool("k"), lambda: bridge.conf.set_i32("k", 1),
                 bridge.conf.commit, bridge.instances, lambda: bridge.apps("i"),
                 lambda: bridge.launch_app("i", "p"), lambda: bridge.register(Callbacks())]

        def all_refused():
            for call in calls:
                with self.assertRaises(RuntimeError):
                    call()

        all_refused()
        fake.fakeAnswer(-1)
        self.fails("bridgeApiInit", -1, bridge.init, "Helper")
        all_refused()
        fake.fakeAnswer(0)
        bridge.init("Helper")
        bridge.fini()
        all_refused()
        self.assertEqual(self.taken(), ["bridgeApiInit Helper"] * 2 + ["bridgeApiFini"])

    def test_bytes_that_are_no_utf8_are_replaced(self):
        self.assertEqual(qxbridge._text(b"a\xffb"), "a\ufffdb")

    def test_the_client_id_outlives_the_call(self):
        self.bridge.init("".join(["Log", "Collector"]))
        for _ in range(50):
            gc.collect()
            _ = [b"x" * n for n in range(8, 500)]
        self.assertEqual(fake.fakeClient(), b"LogCollector")

    def test_reading(self):
        conf = self.bridge.conf
        self.assertIs(conf.get_bool("true"), True)
        self.assertIs(conf.get_bool("false"), False)
        self.assertEqual(conf.get_i32("ü"), -2147483647)
        self.assertEqual(conf.get_i64("k"), -9007199254740993)
        self.assertEqual(conf.get_string("k"), "Größe 日本 😀")
        self.assertEqual(conf.get_string("empty"), "")
        self.assertEqual(conf.get_multi_string("k"), ["Bilder", "Größe"])
        self.assertEqual(conf.get_multi_string("empty"), [])
        self.fails("bridgeConfGetString", -1, conf.get_string, "null")
        self.fails("bridgeConfGetMultiString", -1, conf.get_multi_string, "null")
        self.assertEqual(self.taken()[:3], [
            "bridgeConfGetBool true", "bridgeConfGetBool false", "bridgeConfGetI32 ü"])

    def test_writing(self):
        conf = self.bridge.conf
        conf.set_bool("k", True)
        conf.set_bool("k", False)
        conf.set_i32("k", -2147483648)
        conf.set_i64("k", -9223372036854775808)
        conf.set_string("k", "第二")
        conf.set_multi_string("k", ["a", "ü"])
        conf.set_multi_string("k", "a,b")
        conf.set_multi_string("k", (one for one in ["x", "y"]))
        conf.commit()
        conf.commit_to_file("C:\\ü.conf")
        self.assertEqual(self.taken(), [
            "bridgeConfSetBool k 1", "bridgeConfSetBool k 0", "bridgeConfSetI32 k -2147483648",
            "bridgeConfSetI64 k -9223372036854775808", "bridgeConfSetString k 第二",
            "bridgeConfSetMultiString k a,ü", "bridgeConfSetMultiString k a,b",
            "bridgeConfSetMultiString k x,y", "bridgeConfCommit", "bridgeConfCommitToFile C:\\ü.conf"])

    def test_every_code_becomes_an_error(self):
        fake.fakeAnswer(13)
        conf, bridge = self.bridge.conf, self.bridge
        self.fails("bridgeConfSetBool", 13, conf.set_bool, "k", True)
        self.fails("bridgeConfSetI32", 13, conf.set_i32, "k", 1)
        self.fails("bridgeConfSetI64", 13, conf.set_i64, "k", 1)
        self.fails("bridgeConfSetString", 13, conf.set_string, "k", "")
        self.fails("bridgeConfSetMultiString", 13, conf.set_multi_string, "k", "")
        self.fails("bridgeConfCommit", 13, conf.commit)
        self.fails("bridgeConfCommitToFile", 13, conf.commit_to_file, "p")
        self.fails("bridgeLaunchApp", 13, bridge.launch_app, "N", "p")
        self.fails("bridgeLaunchAppStore", 13, bridge.launch_app_store, "N", "s", "p")
        self.fails("bridgeLaunchUrl", 13, bridge.launch_url, "N", "u")
        self.fails("bridgeInstallApk", 13, bridge.install_apk, "N", "f")
        self.fails("bridgeUninstallApp", 13, bridge.uninstall_app, "N", "p")
        self.fails("bridgeInstallImage", 13, bridge.install_image, "N")
        self.fails("bridgeCreateFreshInstance", 13, bridge.create_fresh_instance, "N", 1, 2, "", "", "")
        self.fails("bridgePlrShutdown", 13, bridge.shutdown_player, "N")

    def test_values_that_the_library_would_misread_never_reach_it(self):
        conf = self.bridge.conf
        for wrong in (None, 5, b"bytes"):
            self.assertRaises(TypeError, conf.get_string, wrong)
        self.assertRaises(ValueError, conf.get_string, "a\0b")
        self.assertRaises(TypeError, conf.set_bool, "k", 1)
        self.assertRaises(TypeError, conf.set_i32, "k", 1.0)
        self.assertRaises(TypeError, conf.set_i32, "k", True)
        self.assertRaises(OverflowError, conf.set_i32, "k", 1 << 31)
        self.assertRaises(OverflowError, conf.set_i64, "k", 1 << 63)
        self.assertRaises(ValueError, conf.set_multi_string, "k", ["a,b"])
        self.assertEqual(self.taken(), [])

    def test_listings(self):
        self.assertEqual(self.bridge.instances()[0]["displayName"], "Größe")
        self.assertEqual(self.bridge.apps("Nougat64")[0]["versionCode"], -5)
        self.fails("bridgeGetInstalledApps", -1, self.bridge.apps, "null")
        self.assertEqual(self.taken(), ["bridgeConfGetInstances", "bridgeGetInstalledApps Nougat64",
                                        "bridgeGetInstalledApps null"])

    def test_programs(self):
        bridge = self.bridge
        bridge.launch_app("N", "ü")
        bridge.launch_app_store("N", "s", "p")
        bridge.launch_url("N", "u")
        bridge.install_apk("N", "f")
        bridge.uninstall_app("N", "p")
        bridge.install_image("I")
        bridge.create_fresh_instance("I", 2, 2048, "aga", "dx", "s21")
        bridge.shutdown_player("N")
        bridge.shutdown_player("N", True)
        bridge.shutdown()
        self.assertEqual(self.taken(), [
            "bridgeLaunchApp N ü", "bridgeLaunchAppStore N s p", "bridgeLaunchUrl N u",
            "bridgeInstallApk N f", "bridgeUninstallApp N p", "bridgeInstallImage I",
            "bridgeCreateFreshInstance I 2 2048 aga dx s21", "bridgePlrShutdown N 0",
            "bridgePlrShutdown N 1", "bridgeShutdown"])

    def test_each_function_is_called_by_the_method_of_its_name(self):
        for function in qxbridge.FUNCTIONS:
            if METHODS.get(function, function) is None:
                continue
            with self.subTest(function):
                method = method_of(self.bridge, function)
                values = arguments_of(method)
                method(*values)
                shown = [str(int(one)) if isinstance(one, bool) else str(one) for one in values
                         if not isinstance(one, Callbacks)]
                self.assertEqual(self.taken(), [" ".join([function, *shown])])

    def collecting(self, seen):
        def collect(name):
            return lambda *values: seen.append((name, *values))
        return Callbacks(*map(collect, Callbacks._fields))

    def test_all_nine_callbacks_outlive_their_registration(self):
        seen = []
        self.bridge.register(self.collecting(seen))
        gc.collect()
        fake.fakeSend(1)
        self.assertEqual(seen, [
            ("app_installed", AppInstalled("Nougat64", "com.größe", "Main", "第二 App", -5, "1.0β",
                                           "C:\\Ü.png", True)),
            ("app_uninstalled", "Nougat64", "com.größe"),
            ("apk_install_completed", "Nougat64", -1, "C:\\П.apk"),
            ("instance_list_updated",),
            ("install_image_progress", "Nougat32", 1, 33.125),
            ("create_instance_completed", -2, "Nougat64_1"),
            ("instance_configuration_changed", "Nougat64"),
            ("app_displayed", "Nougat64", "😀"),
            ("account_list_updated", "Nougat64", "jürgen@example.com", 2)])

    def test_empty_texts_arrive_empty(self):
        seen = []
        self.bridge.register(self.collecting(seen))
        fake.fakeSend(0)
        self.assertEqual(seen[0][1], AppInstalled("", "", "", "", 0, "", "", False))
        self.assertEqual(seen[7], ("app_displayed", "", ""))

    def test_unset_functions_are_null(self):
        seen = []
        self.bridge.register(Callbacks(app_displayed=lambda *values: seen.append(values)))
        fake.fakeSend(1)
        self.assertEqual(seen, [("Nougat64", "😀")])

    def test_the_instance_list_needs_no_second_function(self):
        seen = []
        self.bridge.register(Callbacks(instance_list_updated=lambda: seen.append("list")))
        slots = qxbridge._kept_callbacks[-1]
        self.assertTrue(slots[2])
        self.assertFalse(slots[1])
        fake.fakeSend(1)
        self.assertEqual(seen, ["list"])

    def test_an_exception_of_a_callback_stays_in_python(self):
        seen, raised = [], []

        def bad(*_):
            raise RuntimeError("the host's own")

        hook, sys.unraisablehook = sys.unraisablehook, lambda one: raised.append(str(one.exc_value))
        try:
            self.bridge.register(self.collecting(seen)._replace(app_installed=bad))
            fake.fakeSend(1)
        finally:
            sys.unraisablehook = hook
        self.assertEqual(raised, ["the host's own"])
        self.assertEqual(len(seen), 8)

    def test_the_end_while_events_arrive(self):
        seen = []
        self.bridge.register(self.collecting(seen))
        fake.fakeFlood()
        while len(seen) < 100:
            pass
        self.bridge.fini()
        count = len(seen)
        gc.collect()
        self.assertEqual(len(seen), count)

    def test_the_interpreter_ends_the_library(self):
        script = (
            "import ctypes, sys, qxbridge\n"
            "bridge = qxbridge.Bridge(sys.argv[1])\n"
            "bridge.init('Helper')\n"
            "bridge.register(qxbridge.Callbacks(app_displayed=lambda *_: None))\n"
            "ctypes.CDLL(sys.argv[1]).fakeFlood()\n"
            "print('last')\n")
        result = subprocess.run(
            [sys.executable, "-B", "-c", script, LIBRARY], cwd=TREE / "bindings" / "python",
            capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "last\n", ""))


if __name__ == "__main__":
    compile((TREE / "bindings/python/qxbridge.py").read_text("utf-8"), "qxbridge.py", "exec")
    unittest.main()
