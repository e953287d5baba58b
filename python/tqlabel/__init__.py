"""Security labels of protected files: building, reading and editing them.

    label = Label.decode(data)
    for log in label.logs():
        print(log.time, log.text1)
"""

from ._label import Label
from ._library import LabelError
from .records import (Attribute, Cipher, Envelope, Extension, FileCreator, Log, Name,
                      PrivilegePair, Privileges, Recipient, Rights)

__all__ = ["Attribute", "Cipher", "Envelope", "Extension", "FileCreator", "Label", "LabelError",
           "Log", "Name", "PrivilegePair", "Privileges", "Recipient", "Rights"]
