// The interface between a host and libVelko_Modbus_RTU.so.1, a Modbus RTU master driver for
// operator panels.
//
// The library does no I/O and starts no thread. The host owns the serial line, its timing and the
// threads. It asks for the next frame, sends it, collects the response and hands it back:
//
//     SetComInfo(&info);                        // once, before the loop
//     RegistCallBackFuncIntf(done, failed);
//     ReCreatReadVarList(&items);
//     for (;;) {                                // the communication thread
//         const Protocol *request = ComCommunication();
//         if (!request) {
//             ... after two nulls in a row: wait, see ComCommunication
//             continue;
//         }
//         ... empty the line, send request->frameLen bytes of request->frame,
//             collect up to request->replyLen bytes until a timeout of the host's own ...
//         const RW_VAR *verdict = DataCom(&reply, bytesReceived);
//     }
//
// Meanwhile any other thread reads values with GetRegisterData and writes them with
// SetRegisterData.
//
// How to load it
//   Compile with QtCore's flags and -fPIC (pkg-config --cflags Qt5Core), as C++11 or newer. dlopen
//   the library by a path and fetch the entry points with dlsym under the names below, as
//   decltype(&SetComInfo) and so on. Link it only if one serial line is all that the process will
//   ever drive: one loaded file drives one line. For a second line load a second copy of the file
//   (a copy, not a link: the loader recognises the same file). The two share nothing, whatever the
//   flags of dlopen. The library also exports five data symbols: PLC_driver, DataStorage, LB, LW
//   and RWI. They are not declared here, because a linked program would get copies of its own;
//   dlsym finds them. A host does not need them. Loading constructs the driver with empty lists and
//   an empty store. dlclose destroys both. The host must not be inside an entry point then, and
//   must have replaced customMessageHandler if it installed it.
//
// Numbers
//   Every integer is 32 bits, signed. On the line registers travel high byte first. In the store,
//   and in every value that is exchanged with the host, each 16-bit register is two bytes, low byte
//   first, and a double word is two registers, of which the lower-numbered one holds the low half.
//
// Variables
//   A variable is a kind (KIND_..., 0 to 11), an address text, a station and a length. The length
//   is counted in bits for the bit kinds, in bytes for the byte kinds, and in 16-bit words for the
//   word AND the double-word kinds. The address text is decimal:
//     bit kinds          "B.b": bit b counted from the first bit of byte B; b may exceed 7
//     byte kinds         "n": byte n; bytes 2r and 2r + 1 are register r, 2r its low byte
//     word kinds         "n": register n
//     double-word kinds  "n": registers 2n and 2n + 1
//   Digits are those of the "C" locale and of the application's default locale (QLocale), as Qt 4
//   reads numbers, without group separators. A text that is not a 32-bit number counts as 0, which
//   is a valid address: "abc" and "99999999999" name register 0. So does each part of a bit address
//   ("3." is "3.0"). A host that takes texts from people checks them itself. An address is refused
//   if it is negative, if its linear offset does not fit 32 bits, or if a bit address does not have
//   exactly one ".".
//
// Odd lengths of double words
//   GetRegisterData, SetRegisterData, ReCreatReadVarList and the converting mode of
//   AddListOnceReadVar round an odd length up to whole double words; value bytes that are missing
//   count as 0. AddListWriteVar sends `count` registers as given: with an odd count the last
//   register sent is the low half of a double word. The store is always written in whole double
//   words. If a record of a double-word kind has an odd count, the store receives the whole last
//   double word, and the bytes that the record's value lacks are 0. An odd maxRegs makes such
//   records: choose an even one.
//
// Copies
//   The library keeps no byte of the host's beyond a call. Values, names and address texts that it
//   needs later are copied, also if the host made them with QByteArray::fromRawData or
//   QString::fromRawData. The only pointers that it keeps are the one to ComInfo, the two callbacks
//   and those of FlashLocalRegister.
//
// Locks and threads
//   The library has three mutexes, none recursive, which it takes and releases inside its calls:
//   one for the request lists ("list lock"), one for the store ("store lock"), one for the station
//   table ("station lock"). Each entry point says which it takes. A callback runs with the list
//   lock held. The message handler has a lock of its own.
//
// Null pointers
//   Before SetComInfo, and after SetComInfo(0), the entry points that need the record do nothing:
//   ComCommunication returns null; ReCreatReadVarList, SetRegisterData and the converting mode of
//   AddListOnceReadVar return 0; DataCom returns its record with RESULT_GOOD. A null reply counts
//   as an array without bytes. Null callbacks and the pointers of FlashLocalRegister are taken as
//   they are. Any other null pointer changes nothing: the call returns 0, a list function the
//   length of its list. So AddListWriteVar(0, QUEUE_CHECKED) asks for that length.
//
// When the store shows a write
//   Outside remote mode:
//     SetRegisterData       at once if the last exchange failed; and when its request is built, if
//                           the last exchange was good at that time
//     AddListWriteVar       only when its request is built, if the last exchange was good then
//   In remote mode: always when the request is built, and SetRegisterData also at once if the last
//   exchange failed.
//   So a call of SetRegisterData made while the line was good, and built while it fails, is not
//   shown. A write to the input area that AddListWriteVar queued is never sent outside remote mode,
//   but it is shown by the same rule. Before the first exchange, the last one counts as good.
//   The store continues to show a written value after its write was given up. The next read of the
//   register replaces it.
//
// Traps
//   - A null from ComCommunication does not mean idle: the turn that ends a burst of five writes,
//     or of five one-shot reads, returns null if there is nothing else to send, while more are
//     queued.
//   - A given-up write or one-shot read is removed and has to be made again. So are the entries
//     behind it in the same list with the same ownerId and ownerTag (and station, if perVarStation
//     is set): one report stands for all of them.
//   - A reply is judged only by its length and its CRC, not by station or function. A late response
//     of the right length would be taken for the response to the next request. So the host empties
//     the line before it sends, above all after a timeout.
//   - A write that replaces a queued one takes its place. A write of other, overlapping registers
//     that was queued between the two goes out after the newer one, and the device keeps its value.
//   - retryCount is never reset by a good reply: failures of different requests add up to a
//     give-up. A host that wants a request to fail only for its own failures sets retryCount to 0
//     after each finished request, on the communication thread.
//   - cycleDone needs more good requests in a row than the list has entries. On a line that loses a
//     response now and then it may never become 1. DataCom's verdicts say what was read.
//   - Outside remote mode a write to station 0 (broadcast) waits for a response that no slave
//     gives: it is repeated and at last reported as failed although the slaves obey it. Of a bit or
//     a byte only the read goes out, and no slave obeys.
//   - On the line register numbers wrap at 65,536, the 5000 of the third area included. Slaves
//     refuse a request that begins before the wrap and ends after it, and it is given up.
//   - One function 16 frame carries at most 123 registers, one read at most 125. The library sends
//     what maxRegs says; slaves refuse more.
//   - With an odd maxRegs a run of double words is cut inside one of them: its halves travel in two
//     frames, and a slave can see a torn value. Choose an even maxRegs.
//   - Writes to the input area (kinds 0, 3, 6, 9) or of an unknown kind have no Modbus request.
//     Outside remote mode SetRegisterData refuses them; one that AddListWriteVar queued disappears
//     when its turn comes, without a frame and without a callback.
//   - A bit or a byte is written by reading its register and writing it back. What the PLC itself
//     changes in that register between the two is overwritten.
//   - Requests to a disabled station lose their order: each turn moves those in front of the first
//     enabled one to the end of their list. Of two writes to one register the older may then go out
//     last. So a host does not queue writes to a station that it has disabled. A request that was
//     on the line when its station was disabled is still completed: repetitions, and the write half
//     of a read-modify-write.
//   - Very long calls take long. AddListOnceReadVar compares each piece with the whole queue and
//     holds the list lock meanwhile: 65,536 registers with maxRegs 1 take some 50 ms on a PC, and
//     the communication loop waits. SetRegisterData takes the list lock for each piece, so the loop
//     goes on, but a write of 1,048,576 bits takes nearly a second, for 1,024 places in the queue.
//     (scripts/bench measures both.)
//   - A pseudo-terminal (for tests) must be made raw before its first byte, and may deliver bytes
//     after a flush: read until it is silent.
//
// Limits, besides those of the enumeration LIMIT_... below
//   An area image grows up to the highest byte written and never shrinks. Every station number that
//   is read or written makes an (empty) entry. QUEUE_UNCONDITIONALLY has no limit.
//
// Remote mode (ComInfo::remoteMode not 0)
//   Requests describe the access itself, for a peer on the line that carries it out. Every kind is
//   one frame, without a read-modify-write. All numbers are high byte first:
//     byte 0      length of the whole frame in bytes, modulo 256
//     byte 1      low byte of ownerId
//     byte 2      rwFlag: 0 read, 1 write
//     byte 3      low byte of areaNo
//     byte 4      low byte of station
//     bytes 5-6   varKind: AREA_... of a read, KIND_... of a write
//     bytes 7-10  addr: first register of a read, linear offset of a write
//     bytes 11-12 count: registers of a read, units of a write
//     bytes 13-16 rmwMark: 0
//     bytes 17-20 remoteArg
//     then        of a write: the bytes of `value` as they are, low byte of each register first
//     last byte   sum of all bytes before it, modulo 256
//   Example: read 2 registers from register 100 of AREA_HOLDING of station 1, areaNo 1:
//     16 00 00 01 01 00 07 00 00 00 64 00 02 00 00 00 00 00 00 00 00 85
//   The reply has Protocol::replyLen bytes: 2 x count + 5 for a read, 8 for a write, none for a
//   write to station 0. Its last two bytes are the Modbus CRC-16 of the bytes before them, low byte
//   first; the data of a read begins at byte 3, high byte of each register first. Nothing else in
//   it is looked at. The reply is stored if the request's areaNo equals localArea. With another
//   areaNo it is judged, but not stored (RESULT_REMOTE_NOT_STORED).
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtGlobal>

#include <cstddef>

#define VELKO_API __attribute__((visibility("default")))

/// Variable kinds: 3 x width (bit, byte, word, double word) + area (input, holding, holding 5000).
enum VARIABLE_KIND {
    KIND_INPUT_BIT = 0,
    KIND_HOLDING_BIT = 1,
    KIND_HOLDING_5000_BIT = 2,
    KIND_INPUT_BYTE = 3,
    KIND_HOLDING_BYTE = 4,
    KIND_HOLDING_5000_BYTE = 5,
    KIND_INPUT_WORD = 6,
    KIND_HOLDING_WORD = 7,
    KIND_HOLDING_5000_WORD = 8,
    KIND_INPUT_DWORD = 9,
    KIND_HOLDING_DWORD = 10,
    KIND_HOLDING_5000_DWORD = 11,
    KIND_COUNT = 12
};

/// Register areas, in the records of read requests.
enum REGISTER_AREA {
    AREA_INPUT = 6,       ///< read with function 04; cannot be written
    AREA_HOLDING = 7,     ///< read with function 03, written with function 16
    AREA_HOLDING_5000 = 8 ///< the same; register r has number r + 5000 on the line
};

/// RW_VAR::rwFlag.
enum REQUEST_DIRECTION { REQUEST_READ = 0, REQUEST_WRITE = 1 };

/// ComInfo::commMode. Every value but 2 selects store-only mode.
enum COMM_MODE { COMM_STORE_ONLY = 0, COMM_DEVICE = 2 };

/// Second argument of AddListWriteVar and AddListOnceReadVar. Every value but 1 selects the checked
/// mode.
enum QUEUE_MODE { QUEUE_CHECKED = 0, QUEUE_UNCONDITIONALLY = 1 };

/// Fourth argument of RequestDoneFunc.
enum REQUEST_STATUS { REQUEST_DONE = 1, REQUEST_GIVEN_UP = 2 };

/// RW_VAR::retCode of the record that DataCom returns. Each error code begins a class of
/// RESULT_CLASS_SPAN numbers: an ownerId of 0 to 11 is added to the code, any other adds nothing.
/// "Local" are requests whose areaNo equals ComInfo's localArea (all that the driver builds),
/// "remote" are the others. An error code means that the request was given up.
enum RESULT_CODE {
    RESULT_WILL_REPEAT = 0,           ///< failed; ComCommunication returns the frame again
    RESULT_GOOD = 1,                  ///< good exchange, or nothing was pending
    RESULT_LOCAL_BAD_REPLY = 11,      ///< 11 to 22: wrong CRC, or the array is too short
    RESULT_LOCAL_NO_REPLY = 41,       ///< 41 to 52
    RESULT_LOCAL_WRONG_LENGTH = 71,   ///< 71 to 82: an exception response (5 bytes) among them
    RESULT_REMOTE_NOT_STORED = 100,   ///< good remote exchange whose data was not stored
    RESULT_REMOTE_BAD_REPLY = 111,    ///< 111 to 122
    RESULT_REMOTE_NO_REPLY = 141,     ///< 141 to 152
    RESULT_REMOTE_WRONG_LENGTH = 171, ///< 171 to 182
    RESULT_UNKNOWN_OUTCOME = 200,     ///< never returned by DataCom
    RESULT_CLASS_SPAN = 12
};

/// True for a retCode that stands for a good exchange.
inline bool velko_result_is_good(int retCode)
{
    return retCode == RESULT_GOOD || retCode == RESULT_REMOTE_NOT_STORED;
}

enum LIMIT {
    /// Entries of the write queue, and of the one-shot queue, at which the checked mode drops new
    /// ones.
    LIMIT_QUEUE_ENTRIES = 1024,
    /// Registers that the length of one call, or of one variable item, may cover.
    LIMIT_REGISTERS = 65536,
    /// Bytes of one area image. Bytes from here on are not written and read as 0.
    LIMIT_IMAGE_BYTES = 1 << 24,
    /// Bytes of one frame. A write that would exceed it (32,764 registers or more, in remote mode
    /// more than 65,513 bytes) gets no frame and disappears when its turn comes, although the store
    /// shows it. Above 255 bytes the one-byte counts in a frame (the byte count of function 16, the
    /// length of a remote frame) hold the low byte of the number.
    LIMIT_FRAME_BYTES = 65535
};

/// One variable request. 60 bytes on a 32-bit target. The library keeps copies of its own, see
/// "Copies".
struct RW_VAR {
    int ownerId = 0;  ///< the host's first identifier; 0 on cyclic reads. See RESULT_CODE.
    int ownerTag = 0; ///< the host's second identifier; -1 on cyclic reads. The two are the owner.
    int rwFlag = REQUEST_READ;
    int linkMode = 0; ///< ComInfo's remoteMode when the driver built the record; never read
    int areaNo = 0;   ///< ComInfo's localArea on records that the driver builds
    int retCode = 0;  ///< RESULT_...; meaningful only in the record that DataCom returns
    QString varName;  ///< carried, never interpreted
    QString addrText; ///< the address as the host wrote it
    int varKind = 0;  ///< KIND_... of writes; AREA_... of read requests in the lists
    int addr = 0; ///< writes: linear offset (bits for bit kinds, otherwise bytes); reads: register
    int station = 0;   ///< slave; its low byte goes on the line. 0 is broadcast
    int count = 0;     ///< writes: length in the kind's units; reads: registers
    int rmwMark = 0;   ///< -1: the read half of a read-modify-write; 0 in a host's records
    int remoteArg = 0; ///< carried only in remote-mode frames
    QByteArray value;  ///< value bytes of a write, low byte of each register first; empty on reads
};

/// One request frame. 92 bytes on a 32-bit target.
struct Protocol {
    QByteArray frame; ///< the bytes to send, check bytes included
    int frameLen = 0; ///< bytes in frame
    int replyLen = 0; ///< bytes of the expected reply; 0: none (remote broadcast); -1: not checked
    int dataOffset = 0; ///< byte of the reply at which its data begins: 3 for reads, 0 for writes
    int dataLen = 0;    ///< data bytes of the reply: 2 per register for reads, 0 for writes
    RW_VAR var;         ///< copy of the record that the frame serves
    int reserved[3] = {0, 0, 0};
};

/// The host's record of one link. The host allocates and owns it and keeps it alive while the
/// library is loaded; the driver keeps the pointer and reads and writes the fields in place. The
/// record may be longer than declared here: the host may append fields of its own.
///
/// Fields marked (driver) are written by the driver, on the communication thread unless said
/// otherwise. There is no lock for the others, which the host may change while the loop runs: on
/// the communication thread, between DataCom and the next ComCommunication. Those marked (any
/// thread) are also read inside SetRegisterData, AddListOnceReadVar and ReCreatReadVarList, on the
/// thread that calls: change them only while no other thread is inside these. What is queued, and
/// the frame on the line, stay as they were built, except where said.
struct ComInfo {
    int hostWords[4] = {0, 0, 0, 0}; ///< the host's own; never touched
    /// (any thread) Maximum number of registers per request, 1 or more; less counts as 1. No
    /// ceiling is applied: a request without a response is given up. On the line the count of a
    /// read wraps at 65,536. Choose an even number, up to 122 on a link that writes, up to 125 on
    /// one that only reads. With an odd one, double words are cut in two, see "Odd lengths of
    /// double words".
    int maxRegs = 0;
    int hostWord = 0; ///< the host's own; never touched
    /// (any thread) Station of every item of a rebuild and, if perVarStation is 0, of what
    /// AddListOnceReadVar converts and SetRegisterData writes. Other records keep their own.
    int defaultStation = 0;
    /// Failed exchanges that are tolerated; the next one gives the request up. Applies at once, to
    /// the request on the line as well.
    int retryLimit = 0;
    /// (driver) Failed exchanges since the last give-up. The host may set it to 0, see
    /// "Traps".
    int retryCount = 0;
    /// (any thread) Not 0: one-shot reads and writes keep their own station, and a give-up removes
    /// only queued entries of the same station.
    int perVarStation = 0;
    int reserved0 = 0;  ///< set to 0 by SetComInfo
    int frameTotal = 0; ///< (driver) frames of the current request: 1 or 2
    int frameDone = 0;  ///< (driver) frames of the current request answered so far
    int reserved1 = 0;  ///< set to 0 by SetComInfo
    /// (any thread) Not 0: requests are built in the library's remote format, from the next one on.
    int remoteMode = 0;
    /// (any thread) The link's own area number. It is compared with the areaNo of the request on
    /// the line when its reply comes: a request of the old number then counts as remote, and its
    /// data is not stored.
    int localArea = 0;
    int commMode = 0; ///< (any thread) COMM_...: whether SetRegisterData writes to the device
    /// (driver) 1 after more requests of the own area in a row, reads or writes, than the cyclic
    /// list has entries have ended well, without a failed exchange among them, or after
    /// ComCommunication returned null, also for the null that ends a burst. 0 after every failed
    /// exchange, and after a rebuild of the list (on the thread that rebuilds). Read it on the
    /// communication thread, while no other thread is inside ReCreatReadVarList. It shows a full
    /// cycle of the list only while there are no other requests.
    int cycleDone = 0;
    int linkId = 0; ///< first argument of RequestDoneFunc, from the next report on
};

/// One variable of the cyclic read list. 20 bytes on a 32-bit target. A host's own item may be
/// longer, since QList keeps records of this size by pointer and the library never copies them.
struct VAR_ITEM {
    unsigned char hostByte = 0;                      ///< not read
    unsigned char kind = 0;                          ///< KIND_...
    unsigned char hostBytes[6] = {0, 0, 0, 0, 0, 0}; ///< not read
    QString addrText;
    QString varName; ///< carried into the request's record
    int length = 0;  ///< in the kind's units
};

#define VELKO_CHECK_SIZE(record, on32, on64)                                                       \
    static_assert(sizeof(record) == (sizeof(void *) == 4 ? (on32) : (on64)),                       \
                  #record " has another size than the library expects")
#define VELKO_CHECK_OFFSET(record, field, on32, on64)                                              \
    static_assert(offsetof(record, field) == (sizeof(void *) == 4 ? (on32) : (on64)),              \
                  #record "::" #field " is not where the library expects it")

static_assert(sizeof(int) == 4, "the records hold 32-bit integers");

VELKO_CHECK_SIZE(RW_VAR, 60, 72);
VELKO_CHECK_OFFSET(RW_VAR, ownerId, 0, 0);
VELKO_CHECK_OFFSET(RW_VAR, ownerTag, 4, 4);
VELKO_CHECK_OFFSET(RW_VAR, rwFlag, 8, 8);
VELKO_CHECK_OFFSET(RW_VAR, linkMode, 12, 12);
VELKO_CHECK_OFFSET(RW_VAR, areaNo, 16, 16);
VELKO_CHECK_OFFSET(RW_VAR, retCode, 20, 20);
VELKO_CHECK_OFFSET(RW_VAR, varName, 24, 24);
VELKO_CHECK_OFFSET(RW_VAR, addrText, 28, 32);
VELKO_CHECK_OFFSET(RW_VAR, varKind, 32, 40);
VELKO_CHECK_OFFSET(RW_VAR, addr, 36, 44);
VELKO_CHECK_OFFSET(RW_VAR, station, 40, 48);
VELKO_CHECK_OFFSET(RW_VAR, count, 44, 52);
VELKO_CHECK_OFFSET(RW_VAR, rmwMark, 48, 56);
VELKO_CHECK_OFFSET(RW_VAR, remoteArg, 52, 60);
VELKO_CHECK_OFFSET(RW_VAR, value, 56, 64);

VELKO_CHECK_SIZE(Protocol, 92, 112);
VELKO_CHECK_OFFSET(Protocol, frame, 0, 0);
VELKO_CHECK_OFFSET(Protocol, frameLen, 4, 8);
VELKO_CHECK_OFFSET(Protocol, replyLen, 8, 12);
VELKO_CHECK_OFFSET(Protocol, dataOffset, 12, 16);
VELKO_CHECK_OFFSET(Protocol, dataLen, 16, 20);
VELKO_CHECK_OFFSET(Protocol, var, 20, 24);
VELKO_CHECK_OFFSET(Protocol, reserved, 80, 96);

VELKO_CHECK_SIZE(ComInfo, 76, 76);
VELKO_CHECK_OFFSET(ComInfo, maxRegs, 16, 16);
VELKO_CHECK_OFFSET(ComInfo, hostWord, 20, 20);
VELKO_CHECK_OFFSET(ComInfo, defaultStation, 24, 24);
VELKO_CHECK_OFFSET(ComInfo, retryLimit, 28, 28);
VELKO_CHECK_OFFSET(ComInfo, retryCount, 32, 32);
VELKO_CHECK_OFFSET(ComInfo, perVarStation, 36, 36);
VELKO_CHECK_OFFSET(ComInfo, reserved0, 40, 40);
VELKO_CHECK_OFFSET(ComInfo, frameTotal, 44, 44);
VELKO_CHECK_OFFSET(ComInfo, frameDone, 48, 48);
VELKO_CHECK_OFFSET(ComInfo, reserved1, 52, 52);
VELKO_CHECK_OFFSET(ComInfo, remoteMode, 56, 56);
VELKO_CHECK_OFFSET(ComInfo, localArea, 60, 60);
VELKO_CHECK_OFFSET(ComInfo, commMode, 64, 64);
VELKO_CHECK_OFFSET(ComInfo, cycleDone, 68, 68);
VELKO_CHECK_OFFSET(ComInfo, linkId, 72, 72);

VELKO_CHECK_SIZE(VAR_ITEM, 20, 32);
VELKO_CHECK_OFFSET(VAR_ITEM, kind, 1, 1);
VELKO_CHECK_OFFSET(VAR_ITEM, addrText, 8, 8);
VELKO_CHECK_OFFSET(VAR_ITEM, varName, 12, 16);
VELKO_CHECK_OFFSET(VAR_ITEM, length, 16, 24);

#undef VELKO_CHECK_SIZE
#undef VELKO_CHECK_OFFSET

// The callbacks run on the thread that called DataCom, inside that call, with the list lock held.
// They must not call ComCommunication, DataCom, ReCreatReadVarList, AddListReadVar,
// AddListWriteVar, AddListOnceReadVar, SetRegisterData or SetComInfo: those take the list lock, or
// change what DataCom is working on. They may call GetRegisterData, EnCommStation and
// PLCAddressChangeIntef. They must not throw.

/// Reports the end of a write, or of a one-shot read whose areaNo is localArea. (linkId, ownerId,
/// ownerTag, REQUEST_DONE or REQUEST_GIVEN_UP). "Done" is held back while a later entry with the
/// same ownerId and ownerTag is queued in the same list: only the last one reports.
typedef void (*RequestDoneFunc)(int linkId, int ownerId, int ownerTag, int status);

/// Reports that a request of any kind was given up, after its RequestDoneFunc call if it has one.
/// (an empty list, ownerId, 1). The ownerId is that of the record that DataCom returns, see there.
typedef void (*CommFailFunc)(QList<RW_VAR> variables, int ownerId, int flag);

extern "C" {

// --- Set-up: before the communication loop starts. No locks. ---

/// Hands over the link's record. Sets its two reserved words to 0 and resets nothing else. Calling
/// it again replaces the pointer; do so only while no request is on the line.
VELKO_API void SetComInfo(ComInfo *info);

/// Registers both callbacks in place of earlier ones. Null: that callback is not made.
VELKO_API void RegistCallBackFuncIntf(RequestDoneFunc onRequestDone, CommFailFunc onCommFail);

/// Stores three pointers of the host's in LB, LW and RWI. The library never follows them.
VELKO_API void FlashLocalRegister(void *lb, void *lw, void *rwi);

/// Returns 1, always. Any thread, no lock.
VELKO_API int QueryFinishFlag(void);

// --- The communication thread: exactly one thread calls these two. ---

/// Returns the next frame to send, or null if this turn has none. Order: writes, then one-shot
/// reads, then the cyclic list; after five turns in a row a list waits until the cyclic list has
/// had its turn. Requests to disabled stations wait. The same frame is returned again until DataCom
/// has taken it off the list: after a failed exchange that is how it is repeated. The record is the
/// driver's and valid until DataCom is called, not longer: copy what is needed afterwards. Takes
/// the list lock; inside it the station lock and, for writes, the store lock. After a null call
/// again at once, since a null also ends a burst. After two nulls in a row there is nothing to send
/// until another thread queues a request, rebuilds the list or enables a station: wait until then,
/// or for some milliseconds (the reference host waits 1 ms).
VELKO_API const Protocol *ComCommunication(void);

/// Judges the response to the frame that ComCommunication returned, stores what it carries, and
/// finishes, repeats or gives up the request. `reply`: the received bytes; the host's, only read;
/// null counts as no bytes. `bytesReceived`: their number; 0 if none came. Only the first
/// `bytesReceived` bytes count; more than the array holds, or less than 0, is a failed exchange.
/// Returns the driver's own record, valid until the next DataCom. Its retCode is the verdict
/// (RESULT_...). Its other fields, `value` empty, change only if this call finished or gave up a
/// request: they are then the request's. For a cyclic read during which the list was rebuilt they
/// are those of the new list's first entry, which moves to the end of the list without having been
/// read. If the new list is empty, they remain those of the request that was finished before, next
/// to the verdict on this one, and CommFailFunc receives that request's ownerId. Takes the store
/// lock, then the list lock; calls the callbacks under the latter.
VELKO_API const RW_VAR *DataCom(const QByteArray *reply, int bytesReceived);

// --- Lists ---

/// Rebuilds the cyclic read list from the host's items. Each item becomes a range of registers. In
/// ascending order of their registers, ranges of one area are merged if they touch or overlap what
/// is merged already, or if they begin at most maxRegs registers after its first one; then they are
/// cut to at most maxRegs registers. If the lowest range of an area is longer than maxRegs, whole
/// pieces of maxRegs registers are cut off first, and the reach counts from the first register of
/// its rest. If the lowest range of an area is cut without a rest, a range that lies within it
/// makes a request of its own: its registers are read twice. Every item gets ComInfo's
/// defaultStation; with 0 the list becomes empty. An item is left out if its address is invalid or
/// if it covers more than LIMIT_REGISTERS. An item that covers none makes no request of its own,
/// but can lengthen the one that it is merged into. Restarts the cycle (cycleDone 0), unless the
/// host's list is empty. `items` is the host's and only read. Returns the number of requests in the
/// list. Any thread. Items and ComInfo are read, and the items sorted, before the list lock is
/// taken to replace the list; if two threads call at a time, the list is that of the one that takes
/// the lock last.
VELKO_API int ReCreatReadVarList(const QList<VAR_ITEM> *items);

/// Appends a copy of a ready-made read request to the cyclic list, unchecked: varKind an AREA_...,
/// addr the register, count the registers (1 or more; on the line they count modulo 65,536), rwFlag
/// REQUEST_READ, rmwMark 0, areaNo ComInfo's localArea. Returns the list's new length. Takes NO
/// lock: call it only on the communication thread between two exchanges, or while that thread is
/// not running, and never while another thread is in ReCreatReadVarList.
VELKO_API int AddListReadVar(const RW_VAR *request);

/// Queues a copy of a write: varKind a KIND_..., addr the linear offset, count the length in the
/// kind's units (bits and bytes go out one per record: count 1; double words in registers, see "Odd
/// lengths of double words"), value its bytes (missing ones count as 0), rwFlag REQUEST_WRITE,
/// rmwMark 0, station, ownerId, ownerTag, areaNo ComInfo's localArea. QUEUE_UNCONDITIONALLY
/// appends. QUEUE_CHECKED overwrites the queued write of the same station, varKind, addr and count,
/// except at the head, which may be on the line; nothing reports a write that was overwritten.
/// Otherwise it appends, and drops the write without a report if LIMIT_QUEUE_ENTRIES are queued.
/// Returns the queue's length, which does not show a drop. Any thread. Takes the list lock.
VELKO_API int AddListWriteVar(const RW_VAR *request, int mode);

/// Queues a read that is made once. QUEUE_UNCONDITIONALLY appends a copy of a ready-made request
/// (as AddListReadVar). QUEUE_CHECKED converts: varKind is a KIND_..., addrText the address, count
/// the length in the kind's units, rwFlag REQUEST_READ, station, ownerId, ownerTag, areaNo
/// ComInfo's localArea. With another areaNo the value is not stored and RequestDoneFunc is not
/// called; a give-up is still reported through CommFailFunc. The request is cut to maxRegs
/// registers; the last piece reports for all. Pieces that are queued already (same ownerId,
/// ownerTag, station, varKind, addr, count) are not queued again, and pieces are dropped without a
/// report if LIMIT_QUEUE_ENTRIES are queued. The caller's record is rewritten: to the register
/// range of the last piece, rmwMark and remoteArg 0, its station to defaultStation unless
/// perVarStation is set (also if the call returns 0). Returns the queue's length; 0 for an invalid
/// kind or address, station 0, a negative length or one of more than LIMIT_REGISTERS. A length of 0
/// queues nothing, unless a bit or byte begins inside a register. Any thread. Takes the list lock,
/// for all pieces at once.
VELKO_API int AddListOnceReadVar(RW_VAR *request, int mode);

/// Disables (enable 0) or enables (1) a station; other values of `enable` do nothing. A negative
/// station enables all, whatever `enable` says. Requests to a disabled station stay queued, though
/// not in their order, and stored values stay. Any thread. Takes the station lock.
VELKO_API void EnCommStation(int station, int enable);

// --- Values ---

/// Returns the linear offset of an address text: bits for the bit kinds, bytes for the others.
/// Negative for an address that is refused. Any thread, no lock.
VELKO_API int PLCAddressChangeIntef(int kind, QString addrText);

/// Reads `length` units of a kind from the store, never from the line. `unused` has no effect. The
/// contents of `output` (the host's) are replaced: bits as one byte 0 or 1 each; bytes as they are,
/// followed by as many bytes 0; words as 2 bytes each; double words as 4 bytes each, an odd length
/// rounded up. A length below 1 gives an empty array. What was never read or written reads as 0.
/// Returns 1; 0, with `output` untouched, for an invalid address or a length of more than
/// LIMIT_REGISTERS. Any thread. Takes the store lock: one call never sees half a reply.
VELKO_API int GetRegisterData(int unused, int kind, const QString &addrText, int station,
                              QByteArray *output, int length);

/// Writes `length` units of a kind. `value` (the host's, only read) is laid out as GetRegisterData
/// delivers it, any byte but 0 being a set bit; bytes that it lacks count as 0. In store-only mode
/// the value goes to the store and the result is 1. In device mode (COMM_DEVICE) it is queued as by
/// AddListWriteVar with QUEUE_CHECKED: bits and bytes as one record each, words and double words in
/// pieces of at most maxRegs registers. All carry ownerId and ownerTag, so the last one reports for
/// the call. When the store shows the value: see "When the store shows a write". Returns the length
/// of the write queue. If the queue is full, pieces that replace none are dropped without a report,
/// the result is the length all the same (LIMIT_QUEUE_ENTRIES), also if nothing was queued, and the
/// last piece that was queued reports for the call. A host that must know asks for the length first
/// and leaves room for all pieces. Returns 0, with nothing changed, for an invalid address and for
/// a length of more than LIMIT_REGISTERS; in device mode also for a length below 1, if a piece's
/// linear offset would not fit 32 bits and, outside remote mode, for the input area. `station`
/// counts if ComInfo's perVarStation is set, otherwise defaultStation. Any thread. Takes the list
/// lock, then the store lock, for each piece, never both at once.
VELKO_API int SetRegisterData(const QString &varName, int kind, const QString &addrText,
                              int station, const QByteArray *value, int length, int ownerId,
                              int ownerTag);

} // extern "C"

// --- Under C++ names ---

/// Appends a time stamp, ":", the message as it is and a line end to "debug.log" in the working
/// directory; the first message after loading empties the file. A message that cannot be written is
/// lost without a report. A host installs it as Qt 4's message handler (with Qt 5 from within a
/// handler of its own, which passes the message on in Latin-1), and must install another before it
/// unloads the library. dlsym name: _Z20customMessageHandler9QtMsgTypePKc. Any thread; a lock of
/// its own.
VELKO_API void customMessageHandler(QtMsgType type, const char *message);

/// Appends `record`, cut into pieces of at most `maxRegs` registers (less than 1 counts as 1), to
/// `pieces`; a `total` of registers that is not more than maxRegs appends it unchanged. `record` is
/// left holding the last piece. More than LIMIT_REGISTERS pieces are not made: nothing changes
/// then. Both are the caller's, and the pieces share the record's texts and value. dlsym name:
/// _Z12WhetherGroupiiP6RW_VARP5QListIS_E. Any thread, no lock.
VELKO_API void WhetherGroup(int total, int maxRegs, RW_VAR *record, QList<RW_VAR> *pieces);
