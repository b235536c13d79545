"""Typed keys, and the checks of keys."""

import itertools

import support
from qxbridge import Callbacks, Key, catalogue, keys
from qxbridge.generated import KEYS
from qxbridge.known import is_number
from support import Case

LOADED = 'vtr.instance.Nougat64.dpi="240"'
RAW_MODE = "vtr.status.raw_mode"  # has no default


class TypedKeysTest(Case):
    def test_a_key_knows_its_property(self):
        self.assertEqual(keys.GLOBAL.enable_adb_access, Key("vtr.enable_adb_access", "bool", "0"))
        self.assertEqual(keys.GLOBAL.mim_max_fps,
                         Key("vtr.mim.max_fps", "i32", "60", "frames per second"))
        self.assertEqual(keys.instance("Nougat64").dpi,
                         Key("vtr.instance.Nougat64.dpi", "i32", "240", "dots per inch"))
        self.assertEqual(keys.instance("N").abi_list,
                         Key("vtr.instance.N.abi_list", "multi-string", "", "", ("x86", "x64", "arm", "arm64")))
        self.assertEqual(keys.instance("N").status_adb_port.text, "vtr.instance.N.status.adb_port")

    def test_there_is_one_for_each_property(self):
        found = {one.text: one for one in vars(keys.GLOBAL).values()}
        found.update({one.text: one for one in vars(keys.instance("I")).values()})
        prefix = {"global": "vtr.", "instance": "vtr.instance.I."}
        self.assertEqual(found, {prefix[one.scope] + one.name:
                                 Key(prefix[one.scope] + one.name, *one[2:]) for one in KEYS})

    def test_a_key_cannot_be_changed(self):
        with self.assertRaises(AttributeError):
            keys.GLOBAL.locale.text = "vtr.country"

    def test_reading_by_key_has_the_keys_type(self):
        self.start(LOADED)
        for key, text, value in ((keys.GLOBAL.enable_adb_access, "1", True),
                                 (keys.instance("Nougat64").dpi, "320", 320),
                                 (keys.GLOBAL.locale, "de", "de"),
                                 (keys.GLOBAL.shared_folders, "a,b", ["a", "b"])):
            with self.subTest(key.text):
                support.fake.value(key.text, text)
                read = self.bridge.conf.get(key)
                self.assertEqual((type(read), read), (type(value), value))

    def test_writing_by_key(self):
        self.start(LOADED)
        conf = self.bridge.conf
        conf.set(keys.GLOBAL.enable_adb_access, True)
        conf.set(keys.instance("Nougat64").dpi, 320)
        conf.set(keys.GLOBAL.locale, "de")
        conf.set(keys.GLOBAL.shared_folders, ["a", "b"])
        self.assertEqual(support.fake.taken(), [
            "bridgeConfSetBool vtr.enable_adb_access 1",
            "bridgeConfSetI32 vtr.instance.Nougat64.dpi 320", "bridgeConfSetString vtr.locale de",
            "bridgeConfSetMultiString vtr.shared_folders a,b"])

    def test_a_value_of_another_type_never_reaches_the_library(self):
        self.start()
        self.assertRaises(TypeError, self.bridge.conf.set, keys.GLOBAL.enable_adb_access, 1)
        self.assertRaises(TypeError, self.bridge.conf.set, keys.GLOBAL.mim_max_fps, True)
        self.assertEqual(support.fake.taken(), [])

    def test_a_key_made_by_hand_is_checked(self):
        self.start()
        self.key_error('there is no key "vtr.x"', self.bridge.conf.get, Key("vtr.x", "bool", ""))


class KeyChecksTest(Case):
    def setUp(self):
        super().setUp()
        self.start(LOADED)
        self.conf = self.bridge.conf

    def test_a_key_that_does_not_exist(self):
        error = self.key_error('there is no key "vtr.locael"; did you mean "vtr.locale"?',
                               self.conf.get_string, "vtr.locael")
        self.assertEqual((error.key, error.suggestion), ("vtr.locael", "vtr.locale"))
        self.key_error('there is no key "vtr.locael"; did you mean "vtr.locale"?',
                       self.conf.set_string, "vtr.locael", "de")

    def test_an_instances_key_that_does_not_exist(self):
        self.key_error('there is no key "vtr.instance.Nougat64.dip"; did you mean "vtr.instance.Nougat64.dpi"?',
                       self.conf.get_i32, "vtr.instance.Nougat64.dip")

    def test_a_key_with_nothing_near(self):
        for key in ("", "vtr.", "vtr.zzzzzz", "dpi", "vtr.instance.Nougat64", "vtr.instance.Nougat64.",
                    "vtr.instance.Nougat64.locale", "vtr.dpi"):
            with self.subTest(key):
                self.key_error(f'there is no key "{key}"', self.conf.get_string, key)

    def test_a_prefix_that_is_wrong(self):
        self.key_error('there is no key "vt.locale"; did you mean "vtr.locale"?', self.conf.get_string, "vt.locale")

    def test_how_near_a_suggestion_is(self):
        self.assertEqual(catalogue.nearest("locale", ["lo__le"]), "lo__le")
        self.assertEqual(catalogue.nearest("locale", ["l___le"]), "")
        self.assertEqual(catalogue.nearest("Nougat64", ["Noug___4"]), "Noug___4")
        self.assertEqual(catalogue.nearest("Nougat6", ["Noug___"]), "")
        self.assertEqual(catalogue.nearest("Nougat64", ["N____t64"]), "")

    def test_the_nearest_is_suggested_and_of_equals_the_first(self):
        self.assertEqual(catalogue.nearest("abcd", ["abxx", "abcx", "abdd"]), "abcx")

    def test_a_distance_counts_what_is_inserted_removed_or_replaced(self):
        for one, other, count in (("", "", 0), ("a", "", 1), ("", "ab", 2), ("abc", "abc", 0),
                                  ("kitten", "sitting", 3), ("ab", "ba", 2)):
            self.assertEqual(catalogue.distance(one, other), count, (one, other))

    def test_a_distance_is_the_shortest_way(self):
        def shortest(one, other):
            if not one or not other:
                return len(one) + len(other)
            if one[0] == other[0]:
                return shortest(one[1:], other[1:])
            return 1 + min(shortest(one[1:], other), shortest(one, other[1:]), shortest(one[1:], other[1:]))

        texts = ["".join(one) for size in range(5) for one in itertools.product("ab", repeat=size)]
        for one, other in itertools.product(texts, repeat=2):
            self.assertEqual(catalogue.distance(one, other), shortest(one, other), (one, other))

    def test_another_type_than_the_keys(self):
        self.key_error('"vtr.instance.Nougat64.dpi" is an i32, not a bool',
                       self.conf.get_bool, "vtr.instance.Nougat64.dpi")
        self.key_error('"vtr.locale" is a string, not a multi-string', self.conf.get_multi_string, "vtr.locale")
        self.key_error('"vtr.shared_folders" is a multi-string, not a string',
                       self.conf.set_string, "vtr.shared_folders", "a")
        self.key_error('"vtr.enable_adb_access" is a bool, not an i32',
                       self.conf.set_i32, "vtr.enable_adb_access", 1)

    def test_no_key_has_64_bits(self):
        message = '"vtr.mim.max_fps" is an i32, not an i64'
        self.key_error(message, self.conf.get_i64, "vtr.mim.max_fps")
        self.key_error(message, self.conf.set_i64, "vtr.mim.max_fps", 1)


class ValueChecksTest(Case):
    def no_value(self, key):
        self.key_error(f'"{key}" has no value and no default', self.bridge.conf.get_bool, key)

    def unreadable(self, key, value, get):
        self.key_error(f'"{key}" has a value that cannot be read: "{value}"', get, key)

    def test_a_bool_without_a_value(self):
        self.start()
        for name in ("prefer_dedicated_gpu", "feature.macros", "status.raw_mode", "status.ssse3_available"):
            self.no_value(f"vtr.{name}")

    def test_a_bool_with_an_empty_value_has_none(self):
        self.start('vtr.status.raw_mode=""')
        self.no_value(RAW_MODE)

    def test_a_bool_that_the_file_has(self):
        self.start('vtr.status.raw_mode="1"')
        self.bridge.conf.get_bool(RAW_MODE)
        self.assertEqual(support.fake.taken(), ["bridgeConfGetBool vtr.status.raw_mode"])

    def test_a_bool_that_this_process_set(self):
        self.start()
        self.bridge.conf.set_bool(RAW_MODE, False)
        self.bridge.conf.get_bool(RAW_MODE)
        self.assertEqual(support.fake.taken(), ["bridgeConfSetBool vtr.status.raw_mode 0",
                                                "bridgeConfGetBool vtr.status.raw_mode"])

    def test_a_set_that_failed_does_not_count(self):
        self.start()
        support.fake.answer(22)
        self.fails("bridgeConfSetBool", 22, self.bridge.conf.set_bool, RAW_MODE, False)
        self.no_value(RAW_MODE)

    def test_stored_values_that_cannot_be_read(self):
        self.start('vtr.enable_adb_access="yes"', 'vtr.mim.max_fps="abc"',
                   'vtr.instance.Nougat64.dpi="many"', 'vtr.enable_statusbar=""')
        conf = self.bridge.conf
        self.unreadable("vtr.enable_adb_access", "yes", conf.get_bool)
        self.unreadable("vtr.mim.max_fps", "abc", conf.get_i32)
        self.unreadable("vtr.enable_statusbar", "", conf.get_bool)
        dpi = "vtr.instance.Nougat64.dpi"
        self.refused(KeyError, f'"{dpi}" has a value that cannot be read: "many"', conf.get_i32, dpi)
        # Other keys were read, to see whether the instance is loaded.
        self.assertNotIn(f"bridgeConfGetI32 {dpi}", support.fake.taken())

    def test_a_set_value_takes_the_place_of_one_that_cannot_be_read(self):
        self.start('vtr.mim.max_fps="abc"')
        self.bridge.conf.set_i32("vtr.mim.max_fps", 30)
        self.bridge.conf.get_i32("vtr.mim.max_fps")

    def test_numbers_that_the_library_reads(self):
        for text in ("", "0", "-0", "+0", " 12", "\t-3", "12abc", "99999999999", "-1", "007"):
            self.assertTrue(is_number(text), text)
        for text in ("abc", " ", "-", "+", "+-5", "0x", "0 ", "-0.", " abc", "--1", "٣"):
            self.assertFalse(is_number(text), text)

    def test_values_after_a_line_at_which_the_load_stops_do_not_count(self):
        for bad in ("no equals sign", "vtr.nonsense=\"1\"", "vtr.locale=", "vtr.locale=\"" + "x" * 4096 + "\"", ""):
            with self.subTest(bad[:20]):
                self.bridge = self.first()
                self.start('vtr.feature.macros="1"', bad, 'vtr.status.raw_mode="1"')
                self.bridge.conf.get_bool("vtr.feature.macros")
                self.no_value(RAW_MODE)
                self.bridge.fini()

    def test_the_longest_line_that_can_be_read(self):
        start = 'vtr.locale="'
        self.start(start + "x" * (4096 - len(start) - 1) + '"', 'vtr.status.raw_mode="1"')
        self.bridge.conf.get_bool(RAW_MODE)

    def test_a_file_with_other_line_ends_has_values_with_a_quote(self):
        self.start('vtr.enable_adb_access="1"\r')
        self.unreadable("vtr.enable_adb_access", '1"', self.bridge.conf.get_bool)

    def test_without_a_configuration_file_its_values_do_not_count(self):
        self.start('vtr.status.raw_mode="1"', no_conf_file=True)
        self.no_value(RAW_MODE)

    def test_a_commit_loads_what_other_programs_wrote(self):
        self.start()
        self.write('vtr.status.raw_mode="1"')
        self.bridge.conf.set_bool("vtr.enable_adb_access", True)
        self.bridge.conf.commit()
        self.bridge.conf.get_bool(RAW_MODE)

    def test_a_commit_without_changes_loads_nothing(self):
        self.start()
        self.write('vtr.status.raw_mode="1"')
        self.bridge.conf.set_bool("vtr.enable_adb_access", False)  # its default
        self.bridge.conf.commit()
        self.no_value(RAW_MODE)

    def test_a_commit_to_another_file_always_loads(self):
        self.start()
        self.write('vtr.status.raw_mode="1"')
        self.bridge.conf.commit_to_file("C:\\other.conf")
        self.bridge.conf.get_bool(RAW_MODE)

    def test_the_next_load_takes_the_place_of_what_was_committed(self):
        self.start()
        self.bridge.conf.set_bool("vtr.enable_adb_access", True)
        self.bridge.conf.commit()
        self.write('vtr.enable_adb_access="maybe"')
        self.bridge.register(Callbacks())
        support.fake.event("instance_list_updated")
        self.unreadable("vtr.enable_adb_access", "maybe", self.bridge.conf.get_bool)

    def test_a_load_keeps_staged_values(self):
        self.start()
        self.bridge.register(Callbacks())
        self.bridge.conf.set_bool(RAW_MODE, True)
        support.fake.event("instance_configuration_changed", "Nougat64")
        self.bridge.conf.get_bool(RAW_MODE)

    def test_a_value_that_the_file_lost_stays_until_another_initialisation(self):
        self.start('vtr.status.raw_mode="1"')
        self.write('vtr.locale="de"')
        self.bridge.register(Callbacks())
        support.fake.event("instance_list_updated")
        self.bridge.conf.get_bool(RAW_MODE)
        self.bridge.init("Helper")
        self.no_value(RAW_MODE)
