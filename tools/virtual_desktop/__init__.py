"""A desktop to run the program on: display, buses, sound server, accessibility client.

Shared by the end-to-end tests, the lab, the benchmarks and the recorded demo. Needs python3-gi with
the Atspi typelib, python3-dbus and python3-numpy.
"""
