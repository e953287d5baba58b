// The fingerprint record and its list.

#include "access/fingerprint.h"

#include <algorithm>
#include <iterator>

#include "access/copy.h"
#include "der/records/fingerprint.h"

namespace tq {
namespace {

using Actions = std::unique_ptr<ActionList, Releaser<FreeFingerPrintLisr>>;

void free_entries(FingerList& caller) {
  for (std::uint32_t i = 0; i < caller.count; ++i) free_buffer(caller.entries[i].value);
  free_buffer(caller.entries);
  caller.count = 0;
}

// Two of a record's flags have no place in a caller's entry.
[[nodiscard]] bool copy_entry(const ActionList& entry, FingerEntry& caller) {
  std::copy_n(entry.action, std::size(caller.action), caller.action);
  return copy_to_caller(entry.actionSubject, caller.value, caller.valueLen);
}

}  // namespace

std::int32_t GetFingerList(const ActionList* first, FingerList* caller) {
  if (caller == nullptr) return -1;
  *caller = {};
  if (first == nullptr) return 0;
  caller->entries = make_zeroed<FingerEntry>(count(first)).release();
  if (caller->entries == nullptr) return -1;
  for (; first != nullptr; first = first->next) {
    if (!copy_entry(*first, caller->entries[caller->count++])) {
      free_entries(*caller);
      return -1;
    }
  }
  return 0;
}

std::int32_t CopyFingerPriToActionList(const FingerEntry* caller, ActionList* entry) {
  if (caller == nullptr || caller->value == nullptr || entry == nullptr) return -1;
  if (!replace(entry->actionSubject, caller->value, caller->valueLen,
               der::type_word(der::kSequence))) {
    return -1;
  }
  std::fill(std::begin(entry->action), std::end(entry->action), std::uint8_t{0});
  std::copy_n(caller->action, std::size(caller->action), entry->action);
  return 0;
}

std::int32_t SetFingerList(const FingerList* caller, ActionList** first) {
  if (caller == nullptr || first == nullptr) return -1;
  if (caller->count != 0 && caller->entries == nullptr) return -1;
  Actions chain;
  for (std::uint32_t i = 0; i < caller->count; ++i) {
    Actions entry(make_zeroed<ActionList>().release());
    if (!entry || CopyFingerPriToActionList(&caller->entries[i], entry.get()) != 0) return -1;
    entry->next = chain.release();
    chain = std::move(entry);
  }
  *first = chain.release();
  return *first == nullptr ? -1 : 0;
}

std::int32_t GetFinger(const FingerPrint* record, Finger* caller) {
  if (record == nullptr || caller == nullptr) return -1;
  if (GetFingerList(record->fingerPrintList, &caller->list) != 0) return -1;
  const BsysInfo& info = record->sysInfo;
  caller->sysValue = info.sysInfoValue;
  const bool copied = copy_to_caller(info.sysInfo1, caller->sys1, caller->sys1Len) &&
                      copy_to_caller(info.sysInfo2, caller->sys2, caller->sys2Len) &&
                      copy_to_caller(info.sysInfo3, caller->sys3, caller->sys3Len);
  return copied ? 0 : -1;
}

std::int32_t SetFinger(const Finger* caller, FingerPrint* record) {
  if (caller == nullptr || record == nullptr || caller->sys1 == nullptr ||
      caller->sys2 == nullptr || caller->sys3 == nullptr) {
    return -1;
  }
  BsysInfo& info = record->sysInfo;
  if (!replace(info.sysInfo1, caller->sys1, caller->sys1Len, der::kOctetString) ||
      !replace(info.sysInfo2, caller->sys2, caller->sys2Len, der::kOctetString) ||
      !replace(info.sysInfo3, caller->sys3, caller->sys3Len, der::kOctetString)) {
    return -1;
  }
  info.sysInfoValue = caller->sysValue;
  ActionList* chain = record->fingerPrintList;
  const std::int32_t result = SetFingerList(&caller->list, &chain);
  if (chain != record->fingerPrintList) {
    FreeFingerPrintLisr(record->fingerPrintList);
    record->fingerPrintList = chain;
  }
  return result;
}

}  // namespace tq

// The record counts as set from here on, also when the copy fails.
std::int32_t SetFingerPrintInfo(TqLabel label, const Finger* finger) {
  if (label == nullptr || finger == nullptr) return -1;
  label->body.fingerPrint.present = 1;
  return tq::SetFinger(finger, &label->body.fingerPrint);
}

std::int32_t GetFingerPrintInfo(TqLabel label, Finger** finger) {
  if (label == nullptr || finger == nullptr) return -1;
  std::unique_ptr<Finger, tq::Releaser<FreeFingerPrintInfo>> made(
      tq::make_zeroed<Finger>().release());
  if (!made || tq::GetFinger(&label->body.fingerPrint, made.get()) != 0) return -1;
  *finger = made.release();
  return 0;
}

std::int32_t FreeFingerPrintInfo(Finger* finger) {
  if (finger == nullptr) return 0;
  tq::free_buffer(finger->sys1);
  tq::free_buffer(finger->sys2);
  tq::free_buffer(finger->sys3);
  tq::free_entries(finger->list);
  Asn1Free(finger);
  return 0;
}
