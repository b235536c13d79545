"""Folders for development."""

import qxbridge
import support
from support import Case


class FoldersTest(Case):
    def setUp(self):
        super().setUp()
        self.windows.registry = {"UserDefinedDir": "C:\\Elsewhere", "Version": "5.1", "Other": "x"}
        self.windows.path("C:\\Own\\Logs").mkdir(parents=True)
        self.write('vtr.locale="de"', path="C:\\Own\\vantrel.conf")

    def test_the_process_sees_a_product_with_these_folders_and_nothing_else(self):
        qxbridge.use_folders("C:\\Own", "C:\\Programs")
        self.assertEqual(self.windows.registry, {"UserDefinedDir": "C:\\Own", "InstallDir": "C:\\Programs\\",
                                                 "Version": qxbridge.generated.VERSION})

    def test_a_separator_at_the_end_of_the_install_folder_stays_one(self):
        qxbridge.use_folders("C:\\Own", "C:\\Programs\\")
        self.assertEqual(self.windows.registry["InstallDir"], "C:\\Programs\\")

    def test_every_client_starts_in_these_folders(self):
        self.assertEqual(len(qxbridge.preflight("Launcher")), 1)
        qxbridge.use_folders("C:\\Own", "C:\\Programs")
        self.bridge.init("Launcher")
        support.fake.answer(13)
        self.assertEqual(self.fails("bridgeConfCommit", 13, self.bridge.conf.commit).file,
                         "C:\\Own\\vantrel.conf")
        error = self.fails("bridgeLaunchApp", 13, self.bridge.launch_app, "N", "p")
        self.assertEqual((error.file, error.log),
                         ("C:\\Programs\\QX-Player.exe", "C:\\Own\\Logs\\Player.log"))

    def test_the_last_folders_before_the_start_count(self):
        qxbridge.use_folders("C:\\First", "C:\\First")
        qxbridge.use_folders("C:\\Own", "C:\\Programs")
        self.assertEqual(qxbridge.preflight("Launcher"), [])

    def test_folders_that_are_not_valid(self):
        for folders, type_, message in (
                (("", "C:\\P"), ValueError, "data_folder must not be empty"),
                (("C:\\Own", ""), ValueError, "install_folder must not be empty"),
                (("C:\\Own\0", "C:\\P"), ValueError, "data_folder must not contain NUL"),
                (("C:\\Own", 5), TypeError, "install_folder must be str, not int")):
            self.refused(type_, message, qxbridge.use_folders, *folders)
        self.assertEqual(self.windows.registry["UserDefinedDir"], "C:\\Elsewhere")

    def test_it_is_refused_after_the_start(self):
        qxbridge.use_folders("C:\\Own", "C:\\Programs")
        self.start()
        for _ in range(2):
            self.refused(RuntimeError, "use_folders() must be called before init()",
                         qxbridge.use_folders, "C:\\New", "C:\\New")
            self.bridge.fini()
        self.assertEqual(self.windows.registry["UserDefinedDir"], "C:\\Own")
