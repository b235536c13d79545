"""smoke.py DLL LOG: the Python binding with the real library, without a configuration file."""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent / "python"))
from qxbridge import Bridge

with Bridge(sys.argv[1]) as bridge:
    bridge.init("Helper", no_conf_file=True, log_file=sys.argv[2])
    bridge.conf.set_string("vtr.locale", "Größe 日本")
    if bridge.conf.get_string("vtr.locale") != "Größe 日本":
        sys.exit("another text came back")
    if bridge.instances() != []:
        sys.exit("instances without a configuration file")
