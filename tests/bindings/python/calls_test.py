"""Every function and callback of the library, through the binding."""

import ctypes
import gc
import inspect
import re

import qxbridge
import support
from qxbridge import AppInstalled, Callbacks, native
from support import Case

# Functions without a method of the same name.
METHODS = {"bridgeConfGetInstances": "instances_json", "bridgeGetInstalledApps": "apps_json",
           "bridgePlrShutdown": "shutdown_player", "bridgeRegisterCallbacks": "register",
           "bridgeApiInit": None, "bridgeApiInitEx": None, "bridgeApiFini": None,
           "bridgeFreeMemory": None}
# A key of each type.
KEYS = {"bool": "vtr.enable_adb_access", "i32": "vtr.mim.max_fps", "string": "vtr.locale",
        "multi_string": "vtr.shared_folders"}


def called_by_a_method():
    """The functions that have a method, except the 64-bit ones, because no key has that type."""
    return [one for one in qxbridge.FUNCTIONS if METHODS.get(one, one) and not one.endswith("I64")]


def method_of(bridge, function):
    """bridgeConfGetBool -> conf.get_bool; bridgeLaunchApp -> launch_app"""
    name = METHODS.get(function) or re.sub(r"(?<!^)([A-Z])", r"_\1", function[len("bridge"):]).lower()
    if function not in METHODS and name.startswith("conf_"):
        return getattr(bridge.conf, name[len("conf_"):])
    return getattr(bridge, name)


def arguments_of(method):
    """A different value for each parameter, by its type. A text is the parameter's name, a key has the
    method's type."""
    arguments = []
    for one in inspect.signature(method).parameters.values():
        values = {int: 7 + len(arguments), bool: True, Callbacks: Callbacks()}
        if one.default is not inspect.Parameter.empty and one.annotation not in values:
            continue
        key = KEYS.get(method.__name__[4:]) if one.name == "key" else one.name
        arguments.append(values.get(one.annotation, key))
    return arguments


class CallsTest(Case):
    def setUp(self):
        super().setUp()
        self.start()

    def test_reading(self):
        conf = self.bridge.conf
        support.fake.value("vtr.enable_adb_access", "1")
        support.fake.value("vtr.country", "")
        support.fake.value("vtr.installed_images", "")
        self.assertIs(conf.get_bool("vtr.enable_adb_access"), True)
        self.assertIs(conf.get_bool("vtr.enable_statusbar"), False)
        self.assertEqual(conf.get_i32("vtr.mim.max_fps"), -2147483647)
        self.assertEqual(conf.get_string("vtr.locale"), "Größe 日本 😀")
        self.assertEqual(conf.get_string("vtr.country"), "")
        self.assertEqual(conf.get_multi_string("vtr.shared_folders"), ["Bilder", "Größe"])
        self.assertEqual(conf.get_multi_string("vtr.installed_images"), [])
        self.assertEqual(support.fake.taken(), [
            "bridgeConfGetBool vtr.enable_adb_access", "bridgeConfGetBool vtr.enable_statusbar",
            "bridgeConfGetI32 vtr.mim.max_fps", "bridgeConfGetString vtr.locale",
            "bridgeConfGetString vtr.country", "bridgeConfGetMultiString vtr.shared_folders",
            "bridgeConfGetMultiString vtr.installed_images"])

    def test_writing(self):
        conf = self.bridge.conf
        conf.set_bool("vtr.enable_adb_access", True)
        conf.set_bool("vtr.enable_adb_access", False)
        conf.set_i32("vtr.mim.max_fps", -2147483648)
        conf.set_i32("vtr.mim.max_fps", 2147483647)
        conf.set_string("vtr.locale", "第二")
        conf.set_multi_string("vtr.shared_folders", ["a", "ü"])
        conf.set_multi_string("vtr.shared_folders", "a,b")
        conf.set_multi_string("vtr.shared_folders", (one for one in ["x", "y"]))
        conf.commit()
        conf.commit_to_file("C:\\ü.conf")
        self.assertEqual(support.fake.taken(), [
            "bridgeConfSetBool vtr.enable_adb_access 1", "bridgeConfSetBool vtr.enable_adb_access 0",
            "bridgeConfSetI32 vtr.mim.max_fps -2147483648",
            "bridgeConfSetI32 vtr.mim.max_fps 2147483647", "bridgeConfSetString vtr.locale 第二",
            "bridgeConfSetMultiString vtr.shared_folders a,ü",
            "bridgeConfSetMultiString vtr.shared_folders a,b",
            "bridgeConfSetMultiString vtr.shared_folders x,y", "bridgeConfCommit",
            "bridgeConfCommitToFile C:\\ü.conf"])

    def test_every_code_becomes_an_error(self):
        support.fake.answer(13)
        failing = [one for one in called_by_a_method() if qxbridge.FUNCTIONS[one][0] is ctypes.c_int32
                   and not one.startswith("bridgeConfGet")]
        self.assertEqual(len(failing), 14)
        for function in failing:
            with self.subTest(function):
                method = method_of(self.bridge, function)
                self.fails(function, 13, method, *arguments_of(method))

    def test_a_text_that_is_null_becomes_an_error(self):
        self.fails("bridgeGetInstalledApps", -1, self.bridge.apps, "null")

    def test_values_that_the_library_would_misread_never_reach_it(self):
        conf = self.bridge.conf
        for wrong in (None, 5, b"bytes"):
            self.assertRaises(TypeError, conf.get_string, wrong)
            self.assertRaises(TypeError, conf.set_string, "vtr.locale", wrong)
        self.assertRaises(ValueError, conf.get_string, "a\0b")
        self.assertRaises(ValueError, conf.set_string, "vtr.locale", "a\0b")
        self.assertRaises(TypeError, conf.set_bool, "vtr.enable_adb_access", 1)
        self.assertRaises(TypeError, conf.set_i32, "vtr.mim.max_fps", 1.0)
        self.assertRaises(TypeError, conf.set_i32, "vtr.mim.max_fps", True)
        self.assertRaises(OverflowError, conf.set_i32, "vtr.mim.max_fps", 1 << 31)
        self.assertRaises(OverflowError, conf.set_i32, "vtr.mim.max_fps", -(1 << 31) - 1)
        self.assertRaises(OverflowError, conf.set_i64, "vtr.mim.max_fps", 1 << 63)
        self.assertRaises(OverflowError, conf.set_i64, "vtr.mim.max_fps", -(1 << 63) - 1)
        self.assertRaises(ValueError, conf.set_multi_string, "vtr.shared_folders", ["a,b"])
        self.assertEqual(support.fake.taken(), [])

    def test_listings(self):
        self.assertEqual(self.bridge.instances()[0]["displayName"], "Größe")
        self.assertEqual(self.bridge.apps("Nougat64")[0]["versionCode"], -5)
        self.assertEqual(support.fake.taken(), ["bridgeConfGetInstances",
                                                "bridgeGetInstalledApps Nougat64"])

    def test_listings_as_the_librarys_own_text(self):
        support.fake.value("bridgeConfGetInstances", '[ {"instance":"N"} ]')
        self.assertEqual(self.bridge.instances_json(), '[ {"instance":"N"} ]')
        self.assertEqual(self.bridge.instances(), [{"instance": "N"}])
        self.assertTrue(self.bridge.apps_json("Nougat64").startswith('[{"package":"com.größe"'))

    def test_the_members_of_listings_are_declared(self):
        self.assertEqual(set(self.bridge.instances()[0]), set(qxbridge.Instance.__annotations__))
        self.assertEqual(set(self.bridge.apps("Nougat64")[0]), set(qxbridge.App.__annotations__))

    def test_a_player_is_shut_down_by_force_only_on_request(self):
        self.bridge.shutdown_player("ü")
        self.bridge.shutdown_player("ü", True)
        self.assertEqual(support.fake.taken(), ["bridgePlrShutdown ü 0", "bridgePlrShutdown ü 1"])

    def test_each_function_is_called_by_the_method_of_its_name(self):
        for function in called_by_a_method():
            with self.subTest(function):
                method = method_of(self.bridge, function)
                values = arguments_of(method)
                method(*values)
                shown = [str(int(one)) if isinstance(one, bool) else str(one) for one in values
                         if not isinstance(one, Callbacks)]
                self.assertEqual(support.fake.taken(), [" ".join([function, *shown])])

    def test_bytes_that_are_no_utf8_are_replaced(self):
        self.assertEqual(native.text_of(b"a\xffb"), "a\ufffdb")


class CallbacksTest(Case):
    def setUp(self):
        super().setUp()
        self.start()

    def collecting(self, seen):
        def collect(name):
            return lambda *values: seen.append((name, *values))
        return Callbacks(*map(collect, Callbacks._fields))

    def test_all_nine_callbacks_outlive_their_registration(self):
        seen = []
        self.bridge.register(self.collecting(seen))
        gc.collect()
        support.fake.library.fakeSend(1)
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
        support.fake.library.fakeSend(0)
        self.assertEqual(seen[0][1], AppInstalled("", "", "", "", 0, "", "", False))
        self.assertEqual(seen[7], ("app_displayed", "", ""))

    def test_functions_that_are_not_set_are_not_called(self):
        seen = []
        self.bridge.register(Callbacks(app_displayed=lambda *values: seen.append(values)))
        support.fake.library.fakeSend(1)
        self.assertEqual(seen, [("Nougat64", "😀")])

    def test_the_instance_list_needs_no_second_function(self):
        """The library calls the function for the instance list only if it has the one for APK files."""
        seen = []
        self.bridge.register(Callbacks(instance_list_updated=lambda: seen.append("list")))
        support.fake.library.fakeSend(1)
        self.assertEqual(seen, ["list"])

    def test_a_second_registration_replaces_the_first(self):
        seen = []
        self.bridge.register(Callbacks(app_displayed=lambda *_: seen.append(1)))
        self.bridge.register(Callbacks(app_displayed=lambda *_: seen.append(2)))
        support.fake.library.fakeSend(1)
        self.assertEqual(seen, [2])
        self.assertEqual(support.fake.taken(), ["bridgeRegisterCallbacks"] * 2)

    def test_registrations_keep_no_more_memory(self):
        before = len(native._kept_callbacks)
        for _ in range(10):
            self.bridge.register(Callbacks())
        self.assertEqual(len(native._kept_callbacks), before + 1)

    def test_an_exception_of_a_callback_stays_in_python(self):
        seen, raised = [], self.unraised()
        self.bridge.register(self.collecting(seen)._replace(app_installed=support.bad))
        support.fake.library.fakeSend(1)
        self.assertEqual(raised, ["the host's own"])
        self.assertEqual(len(seen), 8)
