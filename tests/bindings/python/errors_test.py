"""The messages and members of errors."""

import support
from qxbridge import BridgeError, BridgeKeyError, PreflightError, Problem
from support import Case

LOG = "C:\\Data\\Logs\\Player.log"


class ErrorsTest(Case):
    def test_an_error_has_the_codes_name_and_text(self):
        error = BridgeError("bridgeConfCommit", 2)
        self.assertEqual((error.operation, error.code, error.name, error.text, error.file, error.log),
                         ("bridgeConfCommit", 2, "XERR_NOENT", "no such file or folder", "", ""))
        self.assertEqual(str(error), "bridgeConfCommit failed with 2 (XERR_NOENT: no such file or folder); "
                                     "the log has the cause")

    def test_an_error_of_windows_has_no_name(self):
        error = BridgeError("bridgeLaunchApp", 101223)
        self.assertEqual((error.name, error.text), ("", "Windows error 1223"))
        self.assertEqual(str(error), "bridgeLaunchApp failed with 101223 (Windows error 1223); "
                                     "the log has the cause")

    def test_an_unknown_code(self):
        self.assertEqual((BridgeError("bridgeLaunchApp", 41).name, BridgeError("bridgeLaunchApp", 41).text),
                         ("", "an unknown code"))

    def said(self, call, *values):
        with self.assertRaises(BridgeError) as caught:
            call(*values)
        return str(caught.exception)

    def test_the_file_and_the_log_are_named(self):
        self.start()
        support.fake.answer(13)
        conf, bridge = self.bridge.conf, self.bridge
        cause = " failed with 13 (XERR_ACCES: access denied)"
        log = f"; the log {LOG} has the cause"
        player, manager = "C:\\Programs\\QX-Player.exe", "C:\\Programs\\QX-MultiInstanceManager.exe"
        for operation, file, call in (
                ("bridgeConfCommit", "C:\\Data\\vantrel.conf", conf.commit),
                ("bridgeConfCommitToFile", "D:\\ü.conf", lambda: conf.commit_to_file("D:\\ü.conf")),
                ("bridgeInstallApk", "D:\\a.apk", lambda: bridge.install_apk("N", "D:\\a.apk")),
                ("bridgeLaunchApp", player, lambda: bridge.launch_app("N", "p")),
                ("bridgeLaunchAppStore", player, lambda: bridge.launch_app_store("N", "s", "p")),
                ("bridgeLaunchUrl", player, lambda: bridge.launch_url("N", "u")),
                ("bridgeUninstallApp", player, lambda: bridge.uninstall_app("N", "p")),
                ("bridgeInstallImage", manager, lambda: bridge.install_image("N")),
                ("bridgeCreateFreshInstance", manager,
                 lambda: bridge.create_fresh_instance("N", 1, 2, "", "", ""))):
            with self.subTest(operation):
                self.assertEqual(self.said(call), f"{operation}{cause} for {file}{log}")

    def test_an_operation_without_a_file(self):
        self.start()
        support.fake.answer(13)
        self.assertEqual(self.said(self.bridge.shutdown_player, "N"),
                         f"bridgePlrShutdown failed with 13 (XERR_ACCES: access denied); the log {LOG} has the cause")

    def test_the_hosts_own_log(self):
        self.start(log_file="C:\\own.log")
        support.fake.answer(-1)
        self.assertEqual(self.said(self.bridge.shutdown_player, "N"),
                         "bridgePlrShutdown failed with -1 (XERR_FAILURE: it failed; the log has the cause); "
                         "the log C:\\own.log has the cause")

    def test_a_null_text(self):
        self.start()
        self.assertEqual(self.said(self.bridge.apps, "null"),
                         "bridgeGetInstalledApps failed with -1 (XERR_FAILURE: it failed; the log has the cause); "
                         f"the log {LOG} has the cause")

    def test_an_initialisation_names_the_log(self):
        support.fake.answer(-1)
        self.assertTrue(self.said(self.bridge.init, "Helper").endswith(f"; the log {LOG} has the cause"))

    def test_a_key_error_is_one_of_python_and_shows_its_message_plainly(self):
        error = BridgeKeyError('there is no key "k"', "k", "vtr.k")
        self.assertIsInstance(error, KeyError)
        self.assertIsInstance(error, ValueError)
        self.assertEqual((str(error), error.key, error.suggestion), ('there is no key "k"', "k", "vtr.k"))

    def test_an_error_before_the_start_lists_the_problems(self):
        problems = [Problem("one", "do this"), Problem("two", "do that")]
        error = PreflightError(problems)
        self.assertEqual((str(error), error.problems), ("one: do this\ntwo: do that", tuple(problems)))
