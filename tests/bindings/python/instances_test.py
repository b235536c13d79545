"""Which instances exist, and which of them the library has loaded."""

import support
from qxbridge import Callbacks
from support import Case

DPI = "vtr.instance.{}.dpi"
NOUGAT = 'vtr.instance.Nougat64.dpi="240"'
NOT_AN_IMAGE = '"Pie64" is not an image; there are Nougat32, Nougat64'
ZERO = {"dpi": "0", "max_fps": "0", "eco_mode_max_fps": "0", "gl_win_height": "0", "display_name": ""}


class InstancesTest(Case):
    def loaded(self, instance, **values):
        """Sets the values that the library has of an instance; the others are missing."""
        for name, text in {**ZERO, **values}.items():
            support.fake.value(f"vtr.instance.{instance}.{name}", text)

    def no_instance(self, name, suggestion=""):
        hint = f'; did you mean "{suggestion}"?' if suggestion else ""
        return self.key_error(f'there is no instance "{name}"{hint}',
                              self.bridge.conf.get_i32, DPI.format(name))

    def not_loaded(self, name):
        self.refused(KeyError, f'instance "{name}" is not loaded yet: commit, '
                               "or wait for instanceListUpdated", self.bridge.conf.get_i32, DPI.format(name))

    def test_an_instance_that_does_not_exist(self):
        self.start(NOUGAT)
        error = self.no_instance("nougat64", "Nougat64")
        self.assertEqual((error.key, error.suggestion), ("nougat64", "Nougat64"))
        self.no_instance("Pie")
        self.no_instance("")
        self.key_error('there is no instance "nougat64"; did you mean "Nougat64"?',
                       self.bridge.conf.set_i32, DPI.format("nougat64"), 240)

    def test_without_instances_nothing_is_suggested(self):
        self.start()
        self.no_instance("Nougat64")

    def test_a_line_that_names_no_property_names_no_instance(self):
        self.start('vtr.instance.Nougat64="240"')
        self.no_instance("Nougat64")

    def test_an_instance_that_another_program_created_is_found_and_not_read(self):
        self.start(NOUGAT)
        self.loaded("Nougat64_1")
        self.write(NOUGAT, 'vtr.instance.Nougat64_1.dpi="320"')
        self.not_loaded("Nougat64_1")
        self.bridge.conf.set_i32(DPI.format("Nougat64_1"), 320)
        self.assertEqual(support.fake.taken()[-1], "bridgeConfSetI32 vtr.instance.Nougat64_1.dpi 320")

    def test_an_instance_that_is_gone_from_the_file(self):
        self.start(NOUGAT)
        self.bridge.register(Callbacks())
        self.write()
        support.fake.event("instance_list_updated")
        self.no_instance("Nougat64")

    def test_a_commit_reads_which_instances_there_are(self):
        self.start(NOUGAT)
        self.write()
        self.bridge.conf.commit()
        self.no_instance("Nougat64")

    def test_an_instance_is_loaded_when_one_of_five_values_is_there(self):
        names = ["dpi", "max_fps", "eco_mode_max_fps", "gl_win_height", "display_name"]
        for position, name in enumerate(names):
            with self.subTest(name):
                self.bridge = self.first()
                self.start('vtr.instance.Nougat64.ram="4096"')
                self.loaded("Nougat64", **{name: "1"})
                self.bridge.conf.get_i32("vtr.instance.Nougat64.ram")
                read = [line.split(".")[-1] for line in support.fake.taken()]
                self.assertEqual(read, names[:position + 1] + ["ram"])
                self.bridge.fini()

    def test_whether_an_instance_is_loaded_is_checked_once(self):
        self.start(NOUGAT)
        self.bridge.conf.get_i32("vtr.instance.Nougat64.ram")
        support.fake.taken()
        self.bridge.conf.get_i32("vtr.instance.Nougat64.ram")
        self.assertEqual(support.fake.taken(), ["bridgeConfGetI32 vtr.instance.Nougat64.ram"])

    def test_an_instance_that_is_not_loaded_is_checked_again(self):
        self.start(NOUGAT)
        self.loaded("Nougat64")
        self.not_loaded("Nougat64")
        self.loaded("Nougat64", dpi="240")
        self.assertEqual(self.bridge.conf.get_i32(DPI.format("Nougat64")), 240)

    def test_the_check_whether_it_is_loaded_reads_no_fatal_value(self):
        self.start('vtr.instance.Nougat64.dpi="abc"', 'vtr.instance.Nougat64.max_fps="x"')
        self.loaded("Nougat64", gl_win_height="1")
        self.bridge.conf.get_i32("vtr.instance.Nougat64.ram")
        self.assertEqual(support.fake.taken()[:2], [
            "bridgeConfGetI32 vtr.instance.Nougat64.eco_mode_max_fps",
            "bridgeConfGetI32 vtr.instance.Nougat64.gl_win_height"])

    def test_an_instance_that_this_process_adds(self):
        self.start()
        self.bridge.conf.add_instance("Nougat64_5")
        self.bridge.conf.set_i32(DPI.format("Nougat64_5"), 320)
        self.assertEqual(support.fake.taken(), ["bridgeConfSetI32 vtr.instance.Nougat64_5.dpi 320"])
        self.no_instance("Nougat64_6", "Nougat64_5")

    def test_names_that_no_instance_can_have(self):
        self.start()
        for name, image in (("Pie64", "Pie64"), ("Pie64_1", "Pie64"), ("nougat64", "nougat64"),
                            ("_Nougat64", ""), ("Nougat64\\", "Nougat64\\")):
            with self.subTest(name):
                self.key_error(f'"{image}" is not an image; there are Nougat32, Nougat64',
                               self.bridge.conf.add_instance, name)
        for name in ("", "Nougat64.x", "Nougat64_a.b", "Nougat64_a=b", "Nougat64_a\nb"):
            with self.subTest(name):
                self.key_error(f'"{name}" cannot be the name of an instance',
                               self.bridge.conf.add_instance, name)
        self.assertRaises(ValueError, self.bridge.conf.add_instance, "Nougat64_a\0b")
        self.assertRaises(TypeError, self.bridge.conf.add_instance, None)

    def test_a_listing_with_an_instance_of_an_unknown_image(self):
        self.start(NOUGAT, 'vtr.instance.Pie64_1.dpi="240"')
        self.assertEqual(self.key_error(NOT_AN_IMAGE, self.bridge.instances).key, "Pie64_1")
        self.key_error(NOT_AN_IMAGE, self.bridge.instances_json)

    def test_a_listing_goes_by_what_was_loaded(self):
        self.start(NOUGAT)
        self.bridge.register(Callbacks())
        self.write('vtr.instance.Pie64.dpi="240"')
        self.bridge.instances()
        support.fake.event("instance_list_updated")
        self.key_error(NOT_AN_IMAGE, self.bridge.instances)

    def test_a_commit_brings_the_files_instances_into_the_listing(self):
        self.start()
        self.write('vtr.instance.Pie64.dpi="240"')
        self.bridge.conf.set_bool("vtr.enable_adb_access", True)
        self.bridge.instances()
        self.bridge.conf.commit()
        self.key_error(NOT_AN_IMAGE, self.bridge.instances)

    def test_a_set_makes_an_instance_part_of_the_listing(self):
        self.start()
        self.write('vtr.instance.Pie64.dpi="240"')
        self.bridge.conf.set_i32(DPI.format("Pie64"), 320)
        self.key_error(NOT_AN_IMAGE, self.bridge.instances)

    def test_programs_take_any_instance(self):
        self.start()
        self.bridge.launch_app("Pie64", "p")
        self.bridge.apps("Pie64")
        self.assertEqual(support.fake.taken(), ["bridgeLaunchApp Pie64 p", "bridgeGetInstalledApps Pie64"])
