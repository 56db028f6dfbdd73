// The record engine of the project databases: a C interface on 16-bit file
// handles. docs/record-engine.md describes the data dictionary, the record
// buffer, object ids, open modes and statuses in full.
//
// Conventions of every function:
//  - statuses are 16-bit: 0 success, a positive value a warning or a
//    query's answer, a negative value an error (QBERR_*);
//  - functions that return a pointer answer null on failure;
//  - every call records its outcome, readable with qbgetlasterror: per
//    handle, and process-wide for calls without a valid handle;
//  - bad input (wrong handle, unknown set, a record buffer that is not the
//    engine's, a truncated stream, a file that is not a project database)
//    is refused and leaves the file as it was.
#ifndef QUILTOOL_QB_H
#define QUILTOOL_QB_H

#include <stddef.h>
#include <wchar.h>

#include "quiltool_export.h"

#ifdef __cplusplus
extern "C" {
#endif

// --- sizes ---
#define QB_SETNAMESIZE 32  // bytes of a set or attribute name, terminator included
#define QB_IDSIZE 20       // bytes of an object-id buffer, terminator included
#define QB_MAXIDLEN 19     // longest object id a dictionary may declare
#define QB_MAXATTSIZE 32767

// --- open modes (qbopenfile, qbgetopenmode) ---
#define QB_MODE_QUICKREAD 0    // read-only, inside a read transaction until qbendquick
#define QB_MODE_QUICKUPDATE 1  // writable, inside a write transaction until qbendquick
#define QB_MODE_READ 2         // read-only, every call its own transaction
#define QB_MODE_UPDATE 3       // writable, every call its own transaction

// --- attribute types ---
#define QB_ATT_BYTES 0   // any bytes
#define QB_ATT_LONG 1    // 32-bit signed integer, 4 bytes
#define QB_ATT_DOUBLE 2  // IEEE double, 8 bytes
#define QB_ATT_WSZ 3     // text, stored as UTF-16LE without terminator
#define QB_ATT_SZ 4      // 8-bit text without terminator
#define QB_ATT_ID 5      // an object id (owner links), at most the id length

// --- filters (qbsetfilter) ---
#define QB_FILTER_NONE 0
#define QB_FILTER_SET 1    // records of one set, optionally with an id prefix
#define QB_FILTER_OWNER 2  // members of one owner, optionally of one set

// --- answers of qbexistrec ---
#define QB_ABSENT 0  // the id is free
#define QB_EXISTS 1  // a record of the set has the id
#define QB_TAKEN 2   // a record of another set has the id

// --- statuses ---
#define QB_OK 0
#define QBWARN_NEWFILE 1  // qbswitchfilew: the new file does not exist yet

#define QBERR_BADHANDLE -1    // no such file or dictionary handle
#define QBERR_NOMEM -2        // memory exhausted
#define QBERR_BADARG -3       // a null or malformed argument
#define QBERR_NOSET -4        // set not in the dictionary
#define QBERR_BADREC -5       // not a record buffer of this engine, or damaged
#define QBERR_NOTFOUND -6     // no such record
#define QBERR_DUPLICATE -7    // the id belongs to a record of another set
#define QBERR_NOTOPEN -8      // the handle has no open file
#define QBERR_ALREADYOPEN -9  // the handle's file is open already
#define QBERR_READONLY -10    // the file is open for reading only
#define QBERR_NOTQBFILE -11   // not a project database
#define QBERR_BADSTREAM -12   // truncated or damaged stream
#define QBERR_IO -13          // the file system refused
#define QBERR_BUSY -14        // another process holds the file too long
#define QBERR_QUICKMODE -15   // the call does not fit the file's quick mode
#define QBERR_NOOWNER -16     // the owner named by the record does not exist
#define QBERR_HASMEMBERS -17  // an owner cannot go while it has members
#define QBERR_BADID -18       // an object id that is empty, too long or not text
#define QBERR_NOATT -19       // the record has no such attribute
#define QBERR_BADATT -20      // attribute not declared for the set, or wrong size
#define QBERR_EXISTS -21      // the file or record exists already
#define QBERR_NOFILE -22      // the file does not exist
#define QBERR_CORRUPT -23     // the file is damaged
#define QBERR_VERSION -24     // written by a newer engine
#define QBERR_BADDDQ -25      // a dictionary definition that does not hold
#define QBERR_TOOMANY -26     // out of handles
#define QBERR_BUFSIZE -27     // the caller's buffer is too small

// A set of the dictionary (ddq_getsetinfo).
typedef struct qbsetinfo {
  char name[QB_SETNAMESIZE];
  char owner[QB_SETNAMESIZE];  // owner set, "" for none
  short ownerAtt;              // attribute holding the owner's id, 0 for none
  short nAtts;
} qbsetinfo;

// An attribute of a set (ddq_getattinfo).
typedef struct qbattinfo {
  short number;
  short type;  // QB_ATT_*
  char name[QB_SETNAMESIZE];
} qbattinfo;

// Receives one problem found by qbcheckfile, as one line of text.
typedef void (*qbcheckproc)(void* context, const char* problem);

// --- dictionaries ---
// A new empty dictionary whose object ids have at most idLength characters.
QT_API short ddq_create(short idLength);
// A dictionary from its text form (see docs/record-engine.md).
QT_API short ddq_parse(const char* text);
QT_API short ddq_addset(short hddq, const char* set, const char* ownerSet, short ownerAtt);
QT_API short ddq_addatt(short hddq, const char* set, short att, short type, const char* name);
QT_API short ddq_release(short hddq);
// The id length (>= 1), or a negative status; idType may be null.
QT_API short ddq_getIDinfo(short hddq, short* idType);
QT_API short ddq_getnsets(short hddq);
QT_API short ddq_getsetinfo(short hddq, short index, qbsetinfo* info);
QT_API short ddq_getnatts(short hddq, const char* set);
QT_API short ddq_getattinfo(short hddq, const char* set, short index, qbattinfo* info);

// --- files and handles ---
// A new handle for a file name; hddq is the dictionary qbcreatefile uses
// (-1 for none: an existing file brings its own).
QT_API short qbinitfilew(const wchar_t* path, short hddq);
QT_API short qbopenfile(short hfile, short mode);
QT_API short qbcreatefile(short hfile);
// Closes the file and keeps the handle; an open quick update is committed.
QT_API short qbclosefile(short hfile);
// 1 open, 0 closed, or a negative status.
QT_API short qbfileisopen(short hfile);
// Turns warnings (positive statuses) on (1) or off (0); returns the previous mode.
QT_API short qbsetwarningmode(short hfile, short mode);
// Closes the current file and binds the handle to another; a handle that
// had a file open opens the new one in the same mode.
QT_API short qbswitchfilew(short hfile, const wchar_t* path);
// QB_MODE_* the file is in now, or a negative status (QBERR_NOTOPEN).
QT_API short qbgetopenmode(short hfile);
QT_API short qbgetfilenamew(short hfile, wchar_t* buffer, int size);
// Closes the file (committing an open quick update) and frees the handle.
QT_API short qbclosedatabase(short hfile);
// Frees the handle at once; an open quick update is rolled back.
QT_API short qbreleasefile(short hfile);
QT_API short qbgetlasterror(short hfile);
// A status in words ("not a project database"), for messages and logs.
QT_API const char* qbstatustext(short status);
// How long a call waits for another process's transaction (milliseconds).
QT_API short qbsettimeout(short hfile, long milliseconds);
QT_API short qbgetddq(short hfile);

// --- streams: a whole database as one block of bytes ---
QT_API short qbwritestreamw(short hfile, const wchar_t* path);
// A new handle on an in-memory database read from a stream (QB_MODE_UPDATE).
QT_API short qbreadstreamw(const wchar_t* path);
QT_API short qbreadstreambuf(const unsigned char* data, long size);
QT_API char* qbcreatestreambuf(short hfile, long* size);
QT_API char* qbreleasestreambuf(char* buffer);

// --- quick modes ---
QT_API short qbbeginquickread(short hfile);
QT_API short qbbeginquickupdate(short hfile);
QT_API short qbendquick(short hfile);

// --- records ---
// Record count, honouring the filter; negative on failure.
QT_API long qbgetnrecs(short hfile);
QT_API char* qbfirstrec(short hfile);
// The record after rec; null rec: the record at the qbseek position.
QT_API char* qbnextrec(short hfile, const char* rec);
// The record before rec; null rec: the last record.
QT_API char* qbprevrec(short hfile, const char* rec);
QT_API char* qbfirstmember(short hfile, const char* ownerId);
QT_API char* qbnextmember(short hfile, const char* rec);
// keyLen 0: the record with exactly this id; n > 0: the first record whose
// id starts with the id's first n characters. A null set matches any set.
QT_API char* qbfindrec(short hfile, const char* set, const void* id, short keyLen);
// QB_ABSENT, QB_EXISTS, QB_TAKEN or a negative status.
QT_API short qbexistrec(short hfile, const char* set, const void* id);
QT_API short qbseek(short hfile, const char* set, const void* id);
QT_API char* qbcreaterec(short hfile, const char* set, const void* id);
QT_API short qbsaverec(short hfile, const char* rec);
QT_API short qbsaverecwithahm(short hfile, const char* rec, const void* data, long size);
QT_API short qbdeleteahm(short hfile, const char* rec);
// The stored record's attached block; it stays valid until the next
// qbgetahm on the handle or the handle goes. Null when there is none.
QT_API void* qbgetahm(short hfile, const char* rec, long* size);
QT_API short qbdeleterec(short hfile, const char* set, const void* id);
// Back to a fresh record of its set and id: no attributes.
QT_API short qbresetrec(short hfile, char* rec);
QT_API char* qbcopyrec(const char* rec);
// Frees a record buffer; always answers null.
QT_API char* qbreleaserec(char* rec);
QT_API short qbgetID(short hfile, const char* set, const char* rec, void* id);
QT_API short qbsetID(short hfile, char* rec, const char* set, const void* id);
// The record's set name into set (QB_SETNAMESIZE bytes).
QT_API short qbgetsetname(const char* rec, char* set);
// The owner's id from the record's owner attribute; QBERR_NOATT when it has none.
QT_API short qbgetowner(short hfile, const char* rec, void* ownerId);
// id <-> text; text buffers hold QB_IDSIZE bytes.
QT_API short qbobjIDtosz(short hfile, const void* id, char* text);
QT_API short qbobjIDfromsz(short hfile, void* id, const char* text);

// --- attributes ---
// Pointer to the attribute's bytes inside the record, valid until the
// record changes; size receives the byte count.
QT_API void* qbfindatt(short hfile, const char* rec, short att, short* size);
// Copies into buffer; *size is the buffer's capacity on entry and the byte
// count on return.
QT_API void* qbcopyatt(short hfile, const char* rec, short att, void* buffer, short* size);
// Attributes in number order: *att receives the number.
QT_API void* qbcopyfirstatt(short hfile, const char* rec, short* att, void* buffer, short* size);
// The attribute after *att.
QT_API void* qbcopynextatt(short hfile, const char* rec, short* att, void* buffer, short* size);
// Inserts or replaces; the buffer may move, so *rec is updated.
QT_API short qbinsertatt(short hfile, char** rec, short att, const void* data, short size);
QT_API short qbremoveatt(short hfile, char** rec, short att);
// Removes an attribute of the stored record with this set and id.
QT_API short qbdeleteatt(short hfile, const char* set, const void* id, short att);
#define QB_WSZ_TRIM 1  // qbcopywsz: drop trailing blanks
// Text attribute into a wide buffer of size characters, terminated; null
// when the attribute is missing or the buffer too small.
QT_API wchar_t* qbcopywsz(short hfile, const char* rec, short att, wchar_t* buffer, int size, int flags);
// len: characters, or -1 up to the terminator.
QT_API short qbinsertwsz(short hfile, char** rec, short att, const wchar_t* text, int len);

// --- filters ---
// Restricts qbgetnrecs and the record walks. QB_FILTER_SET: records of set
// whose ids start with the first len bytes of id (len 0: all of the set).
// QB_FILTER_OWNER: members of the owner whose id is given, of set when set
// is not null.
QT_API short qbsetfilter(short hfile, short kind, const char* set, const void* id, int len);
QT_API short qbresetfilter(short hfile);

// --- checking ---
// Checks the file's structure and its records against the dictionary.
// Answers the number of problems found (each also handed to proc when it
// is not null), or a negative status when the check could not run.
QT_API long qbcheckfile(short hfile, qbcheckproc proc, void* context);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif
