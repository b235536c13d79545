"""The library as an object."""

import atexit
import ctypes
import json
from typing import (Any, Callable, Iterable, List, Optional, Tuple, Type, TypeVar, Union, cast,
                    overload)

from . import _windows, life, product
from .background import Background
from .configuration import Configuration
from .errors import ListenError, PreflightError, Problem
from .events import Dispatcher, EventStream, types_of
from .generated import (ApkInstallCompleted, AppDisplayed, AppUninstalled, Callbacks,
                        CreateInstanceCompleted, Event, EventName, InstallImageProgress)
from .known import Known
from .native import Calls, boolean, callback_pointers, kept_text, library_path, utf8
from .preflight import preflight
from .results import App, Instance
from .work import Work

E = TypeVar("E")

# The status with which the manager reports an installed image.
IMAGE_INSTALLED = 2


class Bridge:
    """The library. It can be started once per process. After init() methods may be called from any thread,
    but no other call may run during fini()."""

    def __init__(self, path: Optional[str] = None) -> None:
        """Loads the library: without a path the one beside this package's modules, else the one that
        Windows finds. With an absolute path Windows finds the Qt DLLs beside it."""
        self._calls = Calls(ctypes.CDLL(library_path() if path is None else path))
        self._background = Background()
        self._places = product.Places("", "", "", "")
        self._known = Known(self._read_conf_file)
        self._dispatcher = Dispatcher(self._known.load)
        self._pointers: Optional[List[Any]] = None
        self._client = ""
        self._is_listening = False
        self.conf = Configuration(self._calls, self._known, self._background)

    def __enter__(self) -> "Bridge":
        return self

    def __exit__(self, *_: object) -> None:
        self.fini()

    @staticmethod
    def preflight(client_id: str, *, no_conf_file: bool = False,
                  log_file: Optional[str] = None) -> List[Problem]:
        """The problems with which init() would fail; empty when there are none."""
        return preflight(client_id, no_conf_file=no_conf_file, log_file=log_file)

    def init(self, client_id: str, *, no_conf_file: bool = False,
             log_file: Optional[str] = None) -> None:
        """Starts the library. Raises PreflightError when a check before the start fails; BridgeError with
        code 22 for a client id not in CLIENTS, or -1 for a malformed configuration file; RuntimeError when
        another Bridge has started the library, and after its end."""
        client = kept_text(client_id)
        operation: str = "bridgeApiInit"
        more: Tuple[Any, ...] = ()
        if no_conf_file or log_file is not None:
            log = None if log_file is None else utf8(log_file, "log_file")
            operation, more = "bridgeApiInitEx", (boolean(no_conf_file), 0, log)
        life.current().require_startable(self._calls)
        problems = self.preflight(client_id, no_conf_file=no_conf_file, log_file=log_file)
        if problems:
            raise PreflightError(problems)
        self._use(product.places(no_conf_file, log_file))
        self._known.start()
        self._calls.start(operation, client, *more)
        self._client = client_id
        # The event thread must not call an interpreter that has exited.
        atexit.unregister(self.fini)
        atexit.register(self.fini)

    def fini(self) -> None:
        """Stops the library for the rest of the process. Waits for running calls of coroutines and for a
        running callback. Inside a callback it stops nothing and raises RuntimeError."""
        if life.current().has(self._calls):
            life.refuse_event_thread("fini()")
            self._background.finish()
            self._calls.end()
            self._dispatcher.end()
        atexit.unregister(self.fini)

    def register(self, callbacks: Callbacks) -> None:
        """Replaces all callbacks. The first call starts the event server, without a check that this process
        receives the events; listen() makes that check."""
        self._calls.require_ready()
        self._dispatcher.callbacks = callbacks
        if self._pointers is None:
            # All of them: the binding needs the events that load the configuration.
            self._pointers = callback_pointers(self._dispatcher.receive)
        self._calls.value("bridgeRegisterCallbacks", *self._pointers)

    def listen(self, callbacks: Optional[Callbacks] = None, timeout: float = 10.0) -> None:
        """register(), then checks that this process receives the events.

        Waits up to `timeout` seconds for the server. Raises ListenError when another process receives the
        events of this client id, or none does.
        """
        self._calls.require_ready()
        life.refuse_event_thread("listen()")
        self.register(self._dispatcher.callbacks if callbacks is None else callbacks)
        process = self._server_of_events(timeout)
        if process != _windows.process_id():
            raise ListenError(f'process {process} has the events of client "{self._client}"', process)
        self._is_listening = True

    @overload
    def events(self, names: Union[None, EventName, Iterable[EventName]] = None, *,
               limit: int = 10000) -> EventStream[Event]: ...

    @overload
    def events(self, names: Type[E], *, limit: int = 10000) -> EventStream[E]: ...

    def events(self, names: Any = None, *, limit: int = 10000) -> EventStream[Any]:
        """A stream for `async for` of the events from now on: all, or those of these names or this class.
        Events arrive after listen(). The stream buffers up to `limit` events."""
        self._calls.require_ready()
        stream: EventStream[Any] = EventStream(types_of(names), limit)
        self._dispatcher.add_stream(stream)
        return stream

    def instances(self) -> List[Instance]:
        """The instances, with the members that bridge.h names."""
        return cast(List[Instance], json.loads(self.instances_json()))

    def instances_json(self) -> str:
        """The same as the library's JSON text. Raises BridgeKeyError for an instance of an unknown image,
        with which the library would end the process."""
        self._calls.require_ready()
        self._known.require_listable()
        return self._calls.text("bridgeConfGetInstances")

    def apps(self, instance: str) -> List[App]:
        """The apps of an instance, with the members that bridge.h names."""
        return cast(List[App], json.loads(self.apps_json(instance)))

    def apps_json(self, instance: str) -> str:
        """The same as the library's JSON text."""
        return self._calls.text("bridgeGetInstalledApps", utf8(instance, "instance"))

    async def instances_async(self, timeout: Optional[float] = None) -> List[Instance]:
        """instances() on a thread. Raises TimeoutError after `timeout` seconds; the call goes on."""
        self._calls.require_ready()
        return await self._background.run(self.instances, timeout)

    async def apps_async(self, instance: str, timeout: Optional[float] = None) -> List[App]:
        """apps() on a thread, like instances_async()."""
        self._calls.require_ready()
        return await self._background.run(lambda: self.apps(instance), timeout)

    def launch_app(self, instance: str, package: str) -> Work[AppDisplayed]:
        """Finished when the app is displayed."""
        return self._start(AppDisplayed, lambda one: one == (instance, package),
                           "bridgeLaunchApp", utf8(instance), utf8(package))

    def launch_app_store(self, instance: str, store: str, package: str) -> None:
        self._calls.status("bridgeLaunchAppStore", utf8(instance), utf8(store), utf8(package),
                           file=self._places.player)

    def launch_url(self, instance: str, url: str) -> None:
        self._calls.status("bridgeLaunchUrl", utf8(instance), utf8(url), file=self._places.player)

    def install_apk(self, instance: str, apk_file_path: str) -> Work[ApkInstallCompleted]:
        """Finished when the instance has processed the file, with the outcome's status."""
        return self._start(ApkInstallCompleted,
                           lambda one: (one.instance, one.apk_file_path) == (instance, apk_file_path),
                           "bridgeInstallApk", utf8(instance), utf8(apk_file_path), file=apk_file_path)

    def uninstall_app(self, instance: str, package: str) -> Work[AppUninstalled]:
        """Finished when the app is uninstalled."""
        return self._start(AppUninstalled, lambda one: one == (instance, package),
                           "bridgeUninstallApp", utf8(instance), utf8(package))

    def install_image(self, image_name: str,
                      progress: Optional[Callable[[InstallImageProgress], Any]] = None
                      ) -> Work[InstallImageProgress]:
        """Finished with status 2. Events with other statuses go to progress(), on the event thread."""
        def is_outcome(event: InstallImageProgress) -> bool:
            if event.image_name != image_name or event.status == IMAGE_INSTALLED:
                return event.image_name == image_name
            if progress is not None:
                progress(event)
            return False

        return self._start(InstallImageProgress, is_outcome, "bridgeInstallImage", utf8(image_name),
                           file=self._places.manager)

    def create_fresh_instance(self, image_name: str, cpu: int, ram: int, graphic_engine: str,
                              graphic_renderer: str, device_profile: str
                              ) -> Work[CreateInstanceCompleted]:
        """ram in MiB. Finished when an instance was created or could not be. The event does not name the
        request, so events finish the works in the order of their calls."""
        return self._start(CreateInstanceCompleted, lambda _: True, "bridgeCreateFreshInstance",
                           utf8(image_name), b"%d" % cpu, b"%d" % ram, utf8(graphic_engine),
                           utf8(graphic_renderer), utf8(device_profile), file=self._places.manager)

    def shutdown_player(self, instance: str, flag: bool = False) -> None:
        self._calls.status("bridgePlrShutdown", utf8(instance), boolean(flag))

    def shutdown(self) -> None:
        """Asks the multi-instance manager and every player to shut down."""
        self._calls.value("bridgeShutdown")

    def _server_of_events(self, timeout: float) -> int:
        events = f'the events of client "{self._client}"'
        try:
            process = _windows.pipe_server(f"vtr_{self._client}_bridge_nvo", timeout)
        except PermissionError:
            raise ListenError(f"another user has {events}", None) from None
        if process is None:
            raise ListenError(f"no process serves {events} after {timeout:g} s", None)
        return process

    def _start(self, outcome: Type[E], is_outcome: Callable[[E], bool], operation: str, *values: Any,
               file: str = "") -> Work[E]:
        work = Work(outcome, is_outcome, lambda: self._is_listening)
        program = file or self._places.player
        return work.start(self._dispatcher,
                          lambda: self._calls.status(operation, *values, file=program))

    def _use(self, places: product.Places) -> None:
        self._places = places
        self._calls.log = places.log_file
        self.conf.use(places)

    def _read_conf_file(self) -> bytes:
        path = self._places.conf_file
        return (_windows.read_file(path) or b"") if path else b""
