import sys
from qxbridge import Bridge, Callbacks

with Bridge(*sys.argv[1:]) as bridge:
    bridge.init("Helper")
    bridge.listen(Callbacks(app_displayed=lambda instance, package: print(instance, "shows", package)))
    input("Enter ends the program\n")
