"""From a table as people export it to the text that dsmake takes."""


class Fault(Exception):
    """What ends the program with a message and status 2."""
