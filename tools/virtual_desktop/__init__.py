"""A whole desktop to run the program on: display, buses, sound server, accessibility client.

Shared by the end-to-end tests and by the recorded demo. Needs Python's standard library, python3-gi
with the Atspi typelib, python3-dbus and python3-numpy.
"""
