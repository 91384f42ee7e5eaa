"""A file that is there when it is complete, and never in place of another."""
import os
import secrets

FLAGS = os.O_WRONLY | os.O_CREAT | os.O_EXCL | os.O_NOFOLLOW


class NewFile:
    """Written beside its place under another name, for its owner alone. Removed unless it is kept."""

    def __init__(self, path):
        if os.path.lexists(path):  # said before the work, not behind it
            raise FileExistsError(17, "is there already: name another with -o", path)
        self.path = path
        self.scratch = f"{path}.{secrets.token_hex(4)}"
        self.is_kept = False
        handle = os.open(self.scratch, FLAGS, 0o600)
        self.file = os.fdopen(handle, "wb", buffering=1 << 18)
        self.write = self.file.write

    def keep(self):
        self.file.close()
        os.close(os.open(self.path, FLAGS, 0o600))  # fails where something stands by now
        os.rename(self.scratch, self.path)
        self.is_kept = True

    def __enter__(self):
        return self

    def __exit__(self, *_):
        try:
            self.file.close()
        finally:
            if not self.is_kept:
                os.unlink(self.scratch)
