"""Which process gets the events."""

import support
from qxbridge import Callbacks, ListenError, _windows
from support import Case

PIPE = "vtr_Helper_bridge_nvo"


class ListenTest(Case):
    def setUp(self):
        super().setUp()
        self.start()

    def test_the_server_is_this_process(self):
        self.bridge.listen()
        self.assertEqual(self.windows.pipes, [(PIPE, 10.0)])
        self.assertEqual(support.fake.taken(), ["bridgeRegisterCallbacks"])

    def test_the_server_is_another_process(self):
        self.windows.server = 1234
        error = self.refused(ListenError, 'process 1234 has the events of client "Helper"', self.bridge.listen)
        self.assertEqual(error.process_id, 1234)

    def test_there_is_no_server(self):
        self.windows.server = None
        error = self.refused(ListenError, 'no process serves the events of client "Helper" after 0.5 s',
                             lambda: self.bridge.listen(timeout=0.5))
        self.assertIsNone(error.process_id)
        self.assertEqual(self.windows.pipes, [(PIPE, 0.5)])

    def test_the_server_is_another_users(self):
        def refuse(*_):
            raise PermissionError

        self.patch(_windows, "pipe_server", refuse)
        error = self.refused(ListenError, 'another user has the events of client "Helper"', self.bridge.listen)
        self.assertIsNone(error.process_id)

    def test_it_takes_the_client_of_the_initialisation(self):
        self.bridge.init("LogCollector")
        self.bridge.listen()
        self.assertEqual(self.windows.pipes[-1][0], "vtr_LogCollector_bridge_nvo")

    def test_it_registers_functions_and_keeps_those_that_are_there(self):
        seen = []
        self.bridge.listen(Callbacks(app_displayed=lambda *values: seen.append(values)))
        support.fake.event("app_displayed", "N", "p")
        self.bridge.listen()
        support.fake.event("app_displayed", "N", "q")
        self.assertEqual(seen, [("N", "p"), ("N", "q")])

    def test_a_registration_alone_does_not_check_the_pipe(self):
        self.windows.server = None
        self.bridge.register(Callbacks())
        self.assertEqual(self.windows.pipes, [])

    def test_inside_a_callback_it_is_refused(self):
        raised = self.unraised()
        self.bridge.register(Callbacks(instance_list_updated=self.bridge.listen))
        support.fake.event("instance_list_updated")
        self.assertEqual(raised, ["listen() must not be called inside a callback"])
        self.assertEqual(self.windows.pipes, [])
