/*
 * Opens a label as one of its recipients: may I read the file, and if so, leave a trace of it.
 *
 * Nothing is enforced by the library: it answers, and the program acts on the answers.
 */
#include "people.h"

/* Room for whatever the label holds of one envelope: the lengths go in as capacities. */
typedef struct {
  uint8_t algorithm[32];
  uint8_t serial[128];
  uint8_t key[512];
  uint8_t certificate[4096];
  PJCertIssuerEntry attributes[10];
  PJCertIssuer issuer;
  PrivilegeEntry pairs[20];
  EnvelopeInfo envelope;
  PrivilegeInfo privilege;
} Room;

/* Serial number and issuer say whose envelope is meant; all else is filled in. */
static void find_my_envelope(TqLabel label, const Person* me, Room* room) {
  memset(room, 0, sizeof *room);
  room->attributes[0] = me->attribute[0];
  room->issuer = (PJCertIssuer){room->attributes, 1, 10};
  memcpy(room->serial, me->serial, sizeof me->serial);
  room->envelope = (EnvelopeInfo){.alg = room->algorithm,
                                  .algLen = sizeof room->algorithm,
                                  .serial = room->serial,
                                  .serialLen = sizeof me->serial,
                                  .key = room->key,
                                  .keyLen = sizeof room->key,
                                  .issuer = &room->issuer};
  room->privilege = (PrivilegeInfo){.data = room->certificate,
                                    .dataLen = sizeof room->certificate,
                                    .entries = room->pairs,
                                    .entryCount = 20};
  need(GetEnvelopeFromBody(label, &room->envelope, &room->privilege) == 0, "not for me");
}

/* The count goes up by what the label says, and is kept in it; so is an entry of its log. */
static void leave_a_trace(TqLabel label, const Person* me, const PrivilegeInfo* privilege) {
  need(SetAlreadyReadCountsToLabel(label, me->serial, sizeof me->serial, &me->issuer,
                                   privilege->readCount + 1) == 0,
       "read count");
  uint8_t action[] = "read";
  uint8_t place[] = "office";
  Person who = *me;
  who.issuer.entries = who.attribute;
  const LogInfo entry = {.number = 1,
                         .text1 = action,
                         .text1Len = sizeof action - 1,
                         .issuer = &who.issuer,
                         .array1 = who.serial, /* content octets of an INTEGER, as array2 */
                         .array1Len = sizeof who.serial,
                         .array2 = who.serial,
                         .array2Len = sizeof who.serial,
                         .time = 1700000000,
                         .text2 = place,
                         .text2Len = sizeof place - 1};
  need(AddLog(label, &entry) == 0, "log");
}

/* Opens the label, reads the file once, and gives back what is to be stored in its place. */
static Bytes read_once(Bytes der, const Person* me) {
  TqLabel label = NULL; /* bytes from elsewhere: what is no label is refused here */
  need(DecodeLabel(der.data, der.length, &label) == 0, "no label");
  need(CheckLabelDate(label) == 0, "expired or abolished");
  need(CheckDestroyDate(label) == 0, "to be destroyed");
  Room room;
  find_my_envelope(label, me, &room);
  need(room.privilege.flag1 == 1, "may not read");
  need(room.privilege.readCount < room.privilege.number1, "read often enough");
  printf("%s may read, for the time number %u of %u; unwrap %u bytes of %.*s\n", me->name,
         (unsigned)room.privilege.readCount + 1, (unsigned)room.privilege.number1,
         (unsigned)room.envelope.keyLen, room.envelope.algLen, (const char*)room.algorithm);
  leave_a_trace(label, me, &room.privilege);
  /* A head signature covers all of the label: where there is one, sign again. */
  const Bytes changed = get(EncodeLabel, label);
  FreeHandleLabel(label);
  return changed;
}

/* Newest first: the entry at position 0 is the one of the last reading. */
static void show_log(Bytes der) {
  TqLabel label = NULL;
  uint32_t count = 0;
  need(DecodeLabel(der.data, der.length, &label) == 0 && GetLogCout(label, &count) == 0, "log");
  for (uint32_t i = 0; i < count; ++i) {
    LogInfo* entry = NULL; /* a copy, to be released */
    need(GetLog(label, i, &entry) == 0, "log entry");
    printf("log %u: %s in the %s\n", (unsigned)i, (const char*)entry->text1,
           (const char*)entry->text2);
    FreeLog(entry);
  }
  need(count == 2, "two readings leave two entries");
  FreeHandleLabel(label);
}

int main(void) {
  Person people[kPeople];
  meet(people);
  const Bytes made = label_for(people);
  const Bytes once = read_once(made, &people[kBob]);
  const Bytes twice = read_once(once, &people[kBob]); /* the count was in the label */
  show_log(twice);
  free(made.data);
  free(once.data);
  free(twice.data);
  return EXIT_SUCCESS;
}
