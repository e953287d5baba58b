"""The part of the C interface that the package uses, as the header declares it."""

from __future__ import annotations

import ctypes
import os
import re
import threading
import weakref
from typing import Any

_KINDS: dict[str, Any] = {
    "void": None,
    "TqLabel": ctypes.c_void_p,
    "void*": ctypes.c_void_p,
    "SignEnum*": ctypes.c_void_p,
    "DigitEnvolopEnum*": ctypes.c_void_p,
    "char": ctypes.c_char,
    "const uint8_t*": ctypes.c_char_p,
    "int32_t": ctypes.c_int32,
    "uint8_t": ctypes.c_uint8,
    "uint16_t": ctypes.c_uint16,
    "uint32_t": ctypes.c_uint32,
    "uint64_t": ctypes.c_uint64,
}

RECORDS = {
    "PJCertIssuerEntry": "uint8_t type[16]; uint32_t typeLen; uint8_t value[128]; "
                         "uint32_t valueLen; uint32_t valueTag;",
    "PJCertIssuer": "PJCertIssuerEntry* entries; uint32_t count; uint32_t capacity;",
    "ContentAttrInfo": "uint32_t fileType; uint32_t secrecy; uint32_t fileSize; "
                       "uint8_t* fileName; uint32_t fileNameLen; "
                       "uint8_t* fileTitle; uint32_t fileTitleLen; uint64_t modifyTime; "
                       "uint64_t expiryTime; uint64_t abolishTime; uint64_t destroyTime;",
    "FileCreatorInfo": "uint8_t* str1; uint32_t str1Len; uint8_t* str2; uint32_t str2Len; "
                       "uint32_t time;",
    "EnvelopeInfo": "uint8_t* alg; uint8_t algLen; uint8_t* serial; uint8_t serialLen; "
                    "uint8_t* key; uint32_t keyLen; PJCertIssuer* issuer;",
    "PrivilegeEntry": "uint16_t type; uint32_t value;",
    "PrivilegeInfo": "uint8_t* data; uint32_t dataLen; uint8_t flag1; uint32_t number1; "
                     "uint32_t readCount; uint8_t flag2; uint8_t flag3; uint8_t flag4; "
                     "uint32_t number3; uint32_t number4; uint32_t entryCount; "
                     "PrivilegeEntry* entries;",
    "LogInfo": "uint32_t number; uint8_t* text1; uint32_t text1Len; PJCertIssuer* issuer; "
               "uint8_t* array1; uint32_t array1Len; uint8_t* array2; uint32_t array2Len; "
               "uint64_t time; uint32_t value; uint8_t* text2; uint32_t text2Len;",
    "SignAttribute": "char* algName; uint8_t* value; uint32_t valueLen; uint8_t* cert; "
                     "uint32_t certLen;",
    "MultiSignData": "uint8_t* cert; uint32_t certLen; uint8_t* data; uint32_t dataLen;",
    "WaterMark": "uint8_t* data1; uint32_t data1Len; uint8_t* data2; uint32_t data2Len; "
                 "uint32_t alg; uint32_t algParam; char* text; uint32_t textLen; uint64_t time;",
    "Meta": "uint8_t* element; uint8_t elementLen; uint64_t time1; uint8_t* text1; "
            "uint32_t text1Len; uint64_t time2; uint64_t time3; uint8_t* text2; "
            "uint32_t text2Len;",
    "Seal": "uint8_t* name; uint32_t nameLen; Meta meta; uint8_t type; uint8_t* data; "
            "uint32_t dataLen; uint8_t* element; uint32_t elementLen; uint8_t* bits; "
            "uint32_t bitsLen;",
    "Stamp": "char* text1; uint32_t text1Len; uint32_t value[4]; char* text2; "
             "uint32_t text2Len; uint64_t time; uint8_t* data; uint32_t dataLen;",
    "StampRecord": "uint8_t* name; uint32_t nameLen; Seal seal; Stamp stamp; uint8_t* bits; "
                   "uint32_t bitsLen;",
    "FingerEntry": "uint8_t* value; uint32_t valueLen; uint8_t action[9];",
    "FingerList": "uint32_t count; FingerEntry* entries;",
    "Finger": "uint8_t* sys1; uint32_t sys1Len; uint8_t* sys2; uint32_t sys2Len; "
              "uint8_t* sys3; uint32_t sys3Len; uint32_t sysValue; FingerList list;",
    "LabelSizeInfo": "uint32_t customLen; uint32_t headSignAlgLen; uint32_t headSignLen; "
                     "uint32_t bodySignCertLen; uint32_t reserve; uint32_t cipher; "
                     "uint32_t headEnvelopeCount; uint32_t headEnvelopeSize; "
                     "uint32_t bodySignValueLen; uint32_t bodyEnvelopeSize; uint32_t stampSize; "
                     "uint32_t waterMarkSize; uint32_t fingerPrintSize; uint32_t creatorStr2Len; "
                     "uint32_t fileNoLen; uint32_t fileNameLen; uint32_t fileTitleLen; "
                     "uint32_t extendSize; uint32_t logSize;",
}

FUNCTIONS = {
    "TqLabel(void)": "GetHandleLabel",
    "void(TqLabel)": "FreeHandleLabel",
    "void(LogInfo*)": "FreeLog",
    "int32_t(PJCertIssuer*)": "FreeIssuerName",
    "int32_t(void*)": "DestroyEmura",
    "int32_t(SignEnum*)": "DestroySignEmura",
    "int32_t(WaterMark*)": "FreetWaterMarkInfo",
    "int32_t(StampRecord*)": "FreeStampA",
    "int32_t(Finger*)": "FreeFingerPrintInfo",
    "void(void*)": "Asn1Free",
    "int32_t(TqLabel)":
        "SetHeadCreateTime AbolishSF CheckLabelDate CheckDestroyDate LabelBodyNeedEnc DelAlLog",
    "int32_t(TqLabel, uint32_t)":
        "GLSetFileType SetFileSecc GLSetFileSize SetFileAlignSize SetFileUnEffectSize "
        "SetLabelAlignSize SetLabelPadSize DelExtendAttr",
    "int32_t(TqLabel, uint32_t*)":
        "GLGetFileType GetFileSecc GLGetFileSize GetFileAlignSize GetFileUnEffectSize "
        "GetLabelAlignSize GetDigitEnvlopeCountFromBody GetLogCout GetExtendCount",
    "int32_t(TqLabel, uint64_t)": "SetHeadModifyTime SetModifyTime SetExpired SetDestroyTime",
    "int32_t(TqLabel, uint64_t*)":
        "GetHeadCreateTime GetHeadModifyTime GetModifyTime GetExpired GetDestroyTime "
        "GetAbolishTime",
    "int32_t(TqLabel, const uint8_t*, uint32_t)":
        "GLSetVersion DecodeLabelDecrypted SetHeadSignAlg SetHeadSignCert SetHeadSignValue "
        "SetBodySignCert SetBodySigVal SetLabel SetCustom SetFileName GLSetFileTitle",
    "int32_t(TqLabel, uint8_t*, uint8_t*)": "GLGetVersion GetLabel GetFileName GLGetFileTitle",
    "int32_t(TqLabel, uint8_t*, uint32_t*)":
        "EncodeLabel EncodeLabelPad EncodeBodyPlaint GetSignatureMessage GetHeadSignAlg "
        "GetHeadSignCert GetHeadSignValue GetBodySignCert GetBodySigVal GetCustom",
    "int32_t(TqLabel, const uint8_t*, uint32_t, uint8_t*, uint32_t*)":
        "EncodeLabelEncrypted EncodeLabelPadEncrypted",
    "int32_t(const uint8_t*, uint32_t, TqLabel*)": "DecodeLabel",
    "int32_t(const uint8_t*, uint32_t, uint8_t*, uint32_t*, TqLabel*)": "DecodeLabelEncrypted",
    "int32_t(TqLabel, const uint8_t*, uint32_t, const PJCertIssuer*)":
        "SetCertSerialAndIssuerToHead DelPrivilegeFromLabel",
    "int32_t(TqLabel, uint8_t*, uint8_t*, PJCertIssuer**)": "GetCertSerialAndIssuerToHead",
    "int32_t(TqLabel, const uint8_t*, uint32_t, uint32_t)": "SetEncryptHead",
    "int32_t(TqLabel, uint8_t*, uint8_t*, uint8_t*)": "GetEncryptHead",
    "int32_t(TqLabel, const ContentAttrInfo*)": "SetContentAtrr",
    "int32_t(TqLabel, const FileCreatorInfo*)": "SetBodyFileCreator",
    "int32_t(TqLabel, FileCreatorInfo*)": "GetFileIdentify",
    "int32_t(TqLabel, LabelSizeInfo*)": "LabCalSize",
    "int32_t(TqLabel, const EnvelopeInfo*)": "AddEnvelopeToHead",
    "int32_t(TqLabel, EnvelopeInfo*)": "GetEnvelopeFromHead",
    "int32_t(TqLabel, const EnvelopeInfo*, const PrivilegeInfo*)": "ADDigitEnvlopeToBody",
    "int32_t(TqLabel, const uint8_t*, uint32_t, const PJCertIssuer*, void**)":
        "HaveTheEnvelopeFromHEnv HaveTheEnvelopeFromBEnv",
    "int32_t(TqLabel, int32_t, EnvelopeInfo*, PrivilegeInfo*)": "GetDigitEnvlope",
    "int32_t(DigitEnvolopEnum**, TqLabel)": "CreatEmurateDigitEnvolop",
    "int32_t(TqLabel, const uint8_t*, uint32_t, const PJCertIssuer*, uint32_t)":
        "SetAlreadyReadCountsToLabel",
    "int32_t(DigitEnvolopEnum*, uint8_t*, uint32_t*)": "GetCurrentDigitEnvolop",
    "int32_t(DigitEnvolopEnum*, const uint8_t*, uint32_t, const uint8_t*, uint32_t)":
        "SetCurrentEmuEnvolop",
    "int32_t(TqLabel, int32_t, const SignAttribute*)": "SetBodySignAttr",
    "int32_t(TqLabel, SignEnum**)": "CreateEmurateSign",
    "int32_t(SignEnum*, SignAttribute*)": "GetNextSign",
    "int32_t(TqLabel, MultiSignData*)": "GetMultiSignData",
    "int32_t(TqLabel, const WaterMark*)": "SetWaterMarkInfo",
    "int32_t(TqLabel, WaterMark**)": "GetWaterMarkInfo",
    "int32_t(TqLabel, const StampRecord*)": "SetStampInfo",
    "int32_t(TqLabel, StampRecord**)": "GetStampInfo",
    "int32_t(TqLabel, const Finger*)": "SetFingerPrintInfo",
    "int32_t(TqLabel, Finger**)": "GetFingerPrintInfo",
    "int32_t(TqLabel, const LogInfo*)": "AddLog",
    "int32_t(TqLabel, uint32_t, LogInfo**)": "GetLog",
    "int32_t(TqLabel, uint32_t, const uint8_t*, uint32_t)": "AddExtendValue",
    "int32_t(TqLabel, uint32_t, uint32_t*, uint8_t*, uint32_t*)": "GetExtend",
}


class LabelError(Exception):
    """A call that the library refused: `call` is its name, `code` its result."""

    def __init__(self, call: str, code: int) -> None:
        super().__init__(call, code)
        self.call = call
        self.code = code

    def __str__(self) -> str:
        return f"{self.call} gave {self.code}"


def c_type(name: str) -> Any:
    """The type that a C declaration names."""
    if name in _KINDS:
        return _KINDS[name]
    return ctypes.POINTER(c_type(name.removeprefix("const ").removesuffix("*")))


def _declare(record: str, members: str) -> None:
    fields = []
    for kind, name, count in re.findall(r"(\S+) (\w+)(?:\[(\d+)\])?;", members):
        fields.append((name, c_type(kind) * int(count) if count else c_type(kind)))
    _KINDS[record] = type(record, (ctypes.Structure,), {"_fields_": fields})


def _load() -> ctypes.CDLL:
    try:
        loaded = ctypes.CDLL(os.environ.get("TQLABEL_LIBRARY") or "libtqlabel.so.7")
    except OSError as error:
        raise ImportError(f"{error}. Install the library, or set TQLABEL_LIBRARY to the path of "
                          "its libtqlabel.so.7.", name="tqlabel") from error
    for shape, names in FUNCTIONS.items():
        result, _, arguments = shape.removesuffix(")").partition("(")
        for name in names.split():
            function = getattr(loaded, name)
            function.restype = c_type(result)
            function.argtypes = [c_type(kind) for kind in arguments.split(", ") if kind != "void"]
    return loaded


for _record, _members in RECORDS.items():
    _declare(_record, _members)
library = _load()


def call(name: str, *arguments: Any) -> int:
    """Calls a function for its result, which is returned unless it says failure."""
    code: int = getattr(library, name)(*arguments)
    if code < 0:
        raise LabelError(name, code)
    return code


class Handle:
    """A label of the library: used by one thread at a time, and released once."""

    def __init__(self, value: int | None) -> None:
        if not value:
            raise MemoryError("no room for a label")
        self.lock = threading.RLock()
        self._value = value
        self._release = weakref.finalize(self, library.FreeHandleLabel, value)

    def close(self) -> None:
        """Releases the label, unless it was released before."""
        with self.lock:
            self._release()

    @property
    def value(self) -> int:
        """The handle itself, for as long as the lock is held."""
        if not self._release.alive:
            raise ValueError("the label is closed")
        return self._value

    def call(self, name: str, *arguments: Any) -> int:
        """Calls a function of the label."""
        with self.lock:
            return call(name, self.value, *arguments)

    def number(self, name: str, *arguments: Any) -> int:
        """Calls a function that hands out a number through its last argument."""
        number = getattr(library, name).argtypes[-1]._type_()
        self.call(name, *arguments, ctypes.byref(number))
        return int(number.value)

    def fetch(self, name: str, *arguments: Any) -> bytes:
        """Calls a function that hands out bytes: for their number, then for them."""
        length = getattr(library, name).argtypes[-1]._type_()
        with self.lock:
            self.call(name, *arguments, None, ctypes.byref(length))
            buffer = room(length.value)
            self.call(name, *arguments, buffer, ctypes.byref(length))
        return ctypes.string_at(buffer, length.value)


def room(size: int) -> Any:
    """A buffer for so many bytes. It is never empty: a null pointer would be a size query."""
    return (ctypes.c_uint8 * max(1, size))()
