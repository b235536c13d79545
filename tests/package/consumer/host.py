import sys
from qxbridge import Bridge

with Bridge(*sys.argv[1:]) as bridge:
    bridge.init("Helper")
    for one in bridge.instances():
        print(one["instance"], one["displayName"])
