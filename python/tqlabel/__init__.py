"""Security labels of protected files: building, reading and editing them.

    label = Label.decode(data)
    for log in label.logs():
        print(log.time, log.text1)
"""

from ._label import Label
from ._library import LabelError
from .markings import Fingerprint, Fingerprints, Meta, Seal, Stamp, StampRecord, WaterMark
from .records import (Attribute, Cipher, Envelope, Extension, FileCreator, Log, Name,
                      PrivilegePair, Privileges, Recipient, Rights, Signature)

__all__ = ["Attribute", "Cipher", "Envelope", "Extension", "FileCreator", "Fingerprint",
           "Fingerprints", "Label", "LabelError", "Log", "Meta", "Name", "PrivilegePair",
           "Privileges", "Recipient", "Rights", "Seal", "Signature", "Stamp", "StampRecord",
           "WaterMark"]
