/** @file
 * The Velmo client library, C interface. Plain C11 and C++17.
 *
 * What holds for every function, unless it says otherwise
 *
 *   Result     an int of vl_result.h: 0 (VL_OK) is success; get_error_string() gives
 *              the text. A server's own result code comes back unchanged, but for
 *              vl_releam_seq(); the codes given here are those of velmod.
 *   Server     server_name NULL or "" means the first server at position "own" of the
 *              settings. releam names the realm; NULL or "" is the unnamed one.
 *   Common     3000 (NULL_SERVER_NAME)  server_name is NULL and there is no default
 *   codes      server: the settings have own servers, but none with a name, or the
 *              library's own objects could not be made or locked. 99 (VL_NO_REFERENCE)
 *              the server is unknown to the settings, its naming service does not
 *              answer, or it does not offer the service; also for server_name "" when
 *              there is no default server, and when the library's own objects could
 *              not be made or locked. Both are listed at each function that can give
 *              them as "3000, 99".
 *   Failed     an exception of the broker, a time-out or a lost connection. Each
 *   calls      function has a code of its own for that ("the call failed"); the next
 *              call looks the service up afresh. Some log a line; none hands an
 *              exception on. Whether the server has carried out the operation cannot
 *              be known then.
 *   Strings    NUL-terminated, any bytes (UTF-8 passes unchanged). A NULL string that
 *              goes to the server arrives there as "". Nothing is kept after the
 *              return. Names have 1 to 255 bytes on velmod; an empty one gives 3007
 *              (INVAILD_NULL_PARAMETER) where something is created under it, a longer
 *              one 4 (PARAMETER_ERROR).
 *   Data       a pointer and a length in bytes, copied before the function returns.
 *              NULL is allowed when the length is 0. A negative length, NULL with
 *              a positive length ("bad data"), and NULL where results are to go (but
 *              for a buffer of size 0) give the function's own failure code; no call is
 *              made then, nothing is logged, and the service is not looked up afresh.
 *   Limits     velmod gives 5 (MEMORY_ALLOCATION_FAI) as the result of any operation but
 *              snapshots when it has no memory left, and 4001 (SIZE_IS_NOT_MATCH),
 *              before it looks at anything else, for data above its --max-message
 *              (64 MiB). Beyond 256 MiB the broker refuses: the call failed.
 *   Results    out parameters are written on success only, unless a function says so.
 *   Memory     blocks that the library allocates are freed with
 *              vl_free_memory(&pointer); strings that it hands out (names,
 *              descriptions, types, texts) with vl_string_free() of vl_util.h.
 *              Nothing else is to be freed. When the memory of this process runs out
 *              during a call, a list may be left with a count and an incomplete array:
 *              after a function's own failure code a list is not to be walked. Where
 *              a service is looked up, and in vl_releam_seq(), std::bad_alloc may come
 *              out of the function then; nothing else ever does.
 *   Blocking   until the server has answered, at most for the call time-out
 *              (call_timeout_ms, 30 s by default); the first call to a service, and
 *              the first after a failure, in addition asks the naming service
 *              (naming_timeout_ms, 2 s by default). A call that fails waits for the
 *              look-ups of other threads that are under way, for 2 s and the naming
 *              time-out at most. What may have been carried out is never repeated.
 *   Threads    any function from any thread at any time; calls of different threads
 *              run concurrently. Memory that is handed in belongs to the call until it
 *              returns.
 *   Cancelling pthread_cancel() of a thread that is in a function takes effect after the
 *              function has returned (with deferred cancellation, which is the default).
 *   Processes  a child that fork() makes once any function but vl_free_memory() and
 *              vl_destory_connection_seq() has been called reaches nobody: functions give
 *              99 at once, whatever server is named, and what they give elsewhere when a
 *              server cannot be reached (vl_mid_connect() 3001, vl_releam_seq() 137,
 *              vl_get_servername() a count of 0). Its parent goes on undisturbed. It may
 *              execute another program, and exit in any way. A process that forks first
 *              and calls afterwards is like any other.
 *   Waiting    "option" of sends, receives and replies: 0 does not wait, n waits up to
 *              n milliseconds, 0xFFFFFFFF as long as the server allows (velmod:
 *              --max-wait, 20 s), which is the most in any case. Keep it below the
 *              call time-out.
 *   Layout     offsets and sizes of records are in bytes, on 64-bit systems.
 */
#ifndef VELMO_VL_API_H
#define VELMO_VL_API_H

#include <wchar.h>

#include "vl_export.h"
#include "vl_result.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------- records */

/** A list of names, in a record of the caller. A call that fills it overwrites what it
 * held and frees nothing. Layout: count at 0, names at 8, 16 in all.
 *
 *     for (unsigned int i = 0; i < list.count; i++)
 *         vl_string_free(list.names[i]);
 *     vl_free_memory((void**)&list.names);
 */
typedef struct NameList {
    unsigned int count;
    char** names; /**< an array of count names; not NULL in a list that was filled */
} NameList;

/** One connection between two ports. Layout: the texts at 0 and 256, next at 512, 520
 * in all. Both texts end in NUL and are cut to fit: the second at 255 bytes, the first
 * at 511, since one of more than 255 runs on through the area of the second. */
typedef struct ConnectionBlock {
    char first_text[256];         /**< the sending port's name */
    char second_text[256];        /**< the receiving port's name */
    struct ConnectionBlock* next; /**< NULL in the last one */
} ConnectionBlock;

/** Connections, in a record of the caller; free them with vl_destory_connection_seq().
 * Layout: first at 0, count at 8, 16 in all. */
typedef struct ConnectionList {
    ConnectionBlock* first; /**< NULL in an empty list */
    int count;
} ConnectionList;

#define VL_SERVER_RECORD_NAMES 20

/** The names of the servers at one position. They belong to the library and stay valid
 * until the settings are read again or the process ends. Layout: count at 0, names at 8,
 * 168 in all. */
typedef struct ServerRecord {
    int count;
    const char* names[VL_SERVER_RECORD_NAMES]; /**< NULL from count on */
} ServerRecord;

/* ---------------------------------------------------------- middleware */

/** Tells whether the naming service of a server can be reached. Nothing is kept open by it
 * and no function needs it first. Blocks at most for the naming time-out.
 *
 * @retval 0     it can be reached
 * @retval 3000  server_name is NULL and there is no default server
 * @retval 3001  it does not answer, or the settings do not know the server
 */
VL_EXPORT int vl_mid_connect(const char* server_name);

/** The same as vl_mid_connect(). */
VL_EXPORT int vl_mid_is_connect(const char* server_name);

/** Marks the end of the application's use of the middleware. Closes nothing: every function
 * keeps working afterwards. Contacts nobody.
 *
 * @retval 0  always, but
 * @retval 2  when there was no memory for the library's own objects
 */
VL_EXPORT int vl_mid_disconnect(void);

/** The servers at a position, in the order of the settings, at most 20. Contacts nobody;
 * reads the settings when it is the first use of the library.
 *
 * @param position  "parent", "own", "sibling", "child", "others", "master" or "slave"
 * @return the names. "own" has "0000" when the settings list no own server. count is 0
 *         for a position without servers, any other word, and NULL.
 */
VL_EXPORT ServerRecord vl_get_servername(const char* position);

/** The realms of a server, as releam takes them; "ROOT" is another name of the unnamed one.
 * Asks the naming service at every call.
 *
 * @param list  is emptied first, whatever follows; free it as shown at NameList
 * @retval 0     filled. A server without a service manager that can be reached has the one
 *               realm "ROOT".
 * @retval 137   the call failed, or list is NULL
 * @retval 3000
 */
VL_EXPORT int vl_releam_seq(NameList* list, const char* server_name);

/** The text of a result code in the language of the user (VELMO_LANG, else the locale;
 * English otherwise). Contacts nobody.
 *
 * @param code  any number
 *
 * printf("%ls") writes it in the character set that setlocale() has chosen, and nothing
 * where that has not its letters: without setlocale() in languages other than English.
 *
 * @return never NULL, never to be freed; L"UNKNOWN_ERROR" for a code that has no text
 */
VL_EXPORT const wchar_t* get_error_string(int code);

/** Frees a block that the library has allocated, and sets *p to NULL. Harmless when p or *p
 * is NULL.
 */
VL_EXPORT void vl_free_memory(void** p);

/* --------------------------------------------------------------- ports */

/** Creates a port: a named message end point with a queue. It stays when the process ends.
 *
 * @param port      its name, unique in the server and realm
 * @param handle    any number but 0, chosen by the caller, unique as well; the functions
 *                  on packets know the port by it
 * @param capacity  packets that the queue holds, 0 for the server's default (1024); more
 *                  than the server's limit (1,048,576) means the limit
 * @retval 0     created
 * @retval 4     the name is too long, or handle is 0
 * @retval 5     the server holds no more ports
 * @retval 2014  the name or the handle is in use
 * @retval 3007  the name is empty
 * @retval 112   the call failed (logged)
 * @retval 109   it failed for a reason outside the broker
 * @retval 3000,99
 */
VL_EXPORT int vl_create_port(const char* port, unsigned int handle, unsigned int capacity,
                             const char* server_name, const char* releam);

/** Connects two ports: packets sent on the first then go to the second.
 *
 * @param from    the name of the port that sends
 * @param to      the name of the port that receives
 * @param mode    30001 plain; 30002 exclusive; 30004 plain, and this host's name is
 *                registered with the first port
 * @param flags   reserved: 0
 * @param remark  reserved: ""
 * @retval 0     connected; also when the registration (mode 30004) failed on its way
 * @retval 2     no memory for the library's own objects
 * @retval 2004  the two are connected already, or an exclusive connection, old or new, is
 *               in the way at either end
 * @retval 2005  (mode 30004) they were disconnected again before the registration
 * @retval 2007  no port named from
 * @retval 2008  unknown mode
 * @retval 2009  no port named to
 * @retval 112   the call failed (logged)
 * @retval 110   it failed for a reason outside the broker
 * @retval 3000,99
 */
VL_EXPORT int vl_connect_port(const char* from, const char* to, unsigned int mode,
                              unsigned int flags, const char* remark,
                              const char* server_name, const char* releam);

/** Ends every connection of a port. Packets that are queued already stay.
 *
 * @param port  its handle
 * @retval 0     done
 * @retval 2005  it had none
 * @retval 2007  no such port
 * @retval 112   the call failed (logged)
 * @retval 111   it failed for a reason outside the broker
 * @retval 3000,99
 */
VL_EXPORT int vl_disconenct_port(unsigned int port, const char* server_name,
                                 const char* releam);

/** The connections of a server and realm, in the order of connecting.
 *
 *     ConnectionList list;
 *     if (vl_get_connection_info(&list, NULL, NULL) == VL_OK)
 *         for (ConnectionBlock* block = list.first; block; block = block->next)
 *             printf("%s -> %s\n", block->first_text, block->second_text);
 *     vl_destory_connection_seq(&list);
 *
 * @param list  is emptied first, whatever follows; what it held is not freed
 * @retval 0     done
 * @retval 151  the call failed, or list is NULL. When memory ran out half-way, the list has
 *              the connections that were copied, and a count of one more.
 * @retval 3000,99
 */
VL_EXPORT int vl_get_connection_info(ConnectionList* list, const char* server_name,
                                     const char* releam);

/** Frees the blocks of a list and sets count to 0; first is left and points at freed
 * memory. Does nothing to the blocks of a list whose count is 0 or less. Contacts nobody.
 *
 * @param list  NULL is harmless
 */
VL_EXPORT void vl_destory_connection_seq(ConnectionList* list);

/** The names of the ports with an outgoing connection, followed by those with an incoming
 * one. A port that has both is there twice.
 *
 * @param list  is emptied first, whatever follows; free it as shown at NameList
 * @retval 0     done
 * @retval 143  the call failed (the service is not looked up afresh), or list is NULL
 * @retval 3000,99
 */
VL_EXPORT int vl_com_chennal_seq(NameList* list, const char* server_name,
                                 const char* releam);

/** Chooses how a port with several receivers delivers.
 *
 * @param object  the port's name
 * @param enable  1 (as with a new port): each receiver gets its own copy of a packet;
 *                0: each packet goes to one of them in turn
 * @retval 0     done
 * @retval 4     another value of enable
 * @retval 2007  no such port
 * @retval 112   the call failed
 * @retval 3000,99
 */
VL_EXPORT int enableCopy(const char* object, unsigned int enable, const char* server_name,
                         const char* releam);

/* ------------------------------------------------------------- packets */

/** Sends a packet on a port: to every port connected from it, or into its own queue when
 * there is none.
 *
 * @param port    the port's handle
 * @param data    the packet
 * @param length  of the packet in bytes; may be 0
 * @param option  for room; see "Waiting"
 * @retval 0     queued
 * @retval 2003  a queue is full (option 0)
 * @retval 2007  no such port
 * @retval 2017  a queue is still full after the wait
 * @retval 4001  the packet is larger than a queue can hold
 * @retval 112   the call failed (logged), or bad data
 * @retval 3000,99
 */
VL_EXPORT int vl_send_packet(unsigned int port, const void* data, int length,
                             unsigned int option, const char* server_name,
                             const char* releam);

/** As vl_send_packet(), but to the head of the queue: it is the next packet to be received.
 *
 * @retval 154   the call failed, or bad data; otherwise as vl_send_packet()
 */
VL_EXPORT int vl_send_packet_to_front(unsigned int port, const void* data, int length,
                                      unsigned int option, const char* server_name,
                                      const char* releam);

/** Takes the oldest packet of a port into a buffer of exactly its length. A packet of
 * another length is lost, and the memory it took in this process as well: use
 * vl_receive_packetv() where lengths vary.
 *
 * @param port    the port's handle
 * @param from    NULL, or the handle of the only sender wanted, as a pointer's value:
 *                (void*)(uintptr_t)handle
 * @param buffer  for size bytes; may be NULL when size is 0
 * @param size    of the packet in bytes
 * @param option  for a packet; see "Waiting"
 * @retval 0     received
 * @retval 2000  the queue is still empty after the wait
 * @retval 2002  the queue is empty (option 0)
 * @retval 2007  no such port
 * @retval 2012  the packet's length is not size; nothing is copied
 * @retval 123   the call failed (logged), or buffer is NULL
 * @retval 3000,99
 */
VL_EXPORT int vl_receive_packet(unsigned int port, void* from, void* buffer,
                                unsigned int size, unsigned int option,
                                const char* server_name, const char* releam);

/** Takes the oldest packet of a port into a new block.
 *
 *     void* data;
 *     unsigned int length;
 *     int code = vl_receive_packetv(port, NULL, &data, &length, 1000, NULL, NULL);
 *     if (code == VL_OK) {
 *         use(data, length);
 *         vl_free_memory(&data);
 *     }
 *
 * @param port    as for vl_receive_packet()
 * @param from    as for vl_receive_packet()
 * @param data    the block, to be freed with vl_free_memory(data); an empty packet has one
 *                as well. NULL when the server reports an error or the call fails;
 *                untouched by 3000 and 99 and where a pointer is NULL.
 * @param length  its length in bytes, 0 where *data is NULL
 * @param option  as for vl_receive_packet()
 * @retval 0, 2000, 2002, 2007  as vl_receive_packet()
 * @retval 123   the call failed (logged), or data or length is NULL
 * @retval 3000,99
 */
VL_EXPORT int vl_receive_packetv(unsigned int port, void* from, void** data,
                                 unsigned int* length, unsigned int option,
                                 const char* server_name, const char* releam);

/** Answers the oldest packet that was received on this port and not answered yet; the reply
 * waits, in order, at the port that sent the packet.
 *
 * @param port    the handle of the port that received the packet
 * @param data    the reply
 * @param length  of the reply in bytes; may be 0
 * @param option  for room; see "Waiting"
 * @retval 0     queued
 * @retval 2001  no packet waits for an answer
 * @retval 2003  the sender holds too many replies (option 0)
 * @retval 2007  no such port
 * @retval 2017  it still does after the wait
 * @retval 4001  the reply is larger than it can hold
 * @retval 124   the call failed, or bad data
 * @retval 3000,99
 */
VL_EXPORT int vl_reply_packet(unsigned int port, const void* data, int length,
                              unsigned int option, const char* server_name,
                              const char* releam);

/** Takes the oldest reply to the packets sent on this port into a buffer of exactly its
 * length. A reply of another length is lost: use vl_receive_reply2() where lengths vary.
 *
 * @param port    the handle of the port that sent the packets
 * @param buffer  for size bytes; may be NULL when size is 0
 * @param size    of the reply in bytes
 * @param option  for a reply; see "Waiting"
 * @retval 0     received
 * @retval 2001  no packet sent on this port waits for an answer (option 0)
 * @retval 2002  no answer has come (option 0)
 * @retval 2007  no such port
 * @retval 2012  the reply's length is not size; nothing is copied
 * @retval 2016  no answer has come after the wait
 * @retval 127   the call failed, or buffer is NULL
 * @retval 3000,99
 */
VL_EXPORT int vl_receive_reply(unsigned int port, void* buffer, unsigned int size,
                               unsigned int option, const char* server_name,
                               const char* releam);

/** Takes the oldest reply to the packets sent on this port into a new block.
 *
 * @param port    as for vl_receive_reply()
 * @param data    the block, to be freed with vl_free_memory(data); an empty reply has one
 *                as well. Unlike that of vl_receive_packetv() untouched by any failure.
 * @param length  its length in bytes
 * @param option  as for vl_receive_reply()
 * @retval 0, 2001, 2002, 2007, 2016  as vl_receive_reply()
 * @retval 127   the call failed, or data or length is NULL
 * @retval 3000,99
 */
VL_EXPORT int vl_receive_reply2(unsigned int port, void** data, unsigned int* length,
                                unsigned int option, const char* server_name,
                                const char* releam);

/* -------------------------------------------------------------- events */

/** Declares what events of this number are like.
 *
 *     vl_declare_event(7, "idle", 4, NULL, NULL);
 *     vl_add_event("pump stopped", 7, NULL, NULL);
 *     vl_send_event("pump stopped", "dry run", 7, NULL, NULL);
 *     vl_event_count("pump stopped", &count, NULL, NULL); // 1
 *
 * @param id      the number, chosen by the caller
 * @param data    what an event has before it is raised, and when it is raised with none
 * @param length  of the data in bytes; may be 0
 * @retval 0     declared, for good
 * @retval 5     the server holds no more declarations
 * @retval 2014  it has been declared
 * @retval 4001  the data are larger than the server allows (1 MiB)
 * @retval 126   the call failed (logged), or bad data
 * @retval 3000,99
 */
VL_EXPORT int vl_declare_event(unsigned int id, const void* data, int length,
                               const char* server_name, const char* releam);

/** Adds an event under a name.
 *
 * @param event  its name, unique in the server and realm
 * @param id     a number that has been declared
 * @retval 0     added
 * @retval 4     the name is too long
 * @retval 5     the server holds no more events
 * @retval 2014  there is an event of that name
 * @retval 3007  the name is empty
 * @retval 3012  the number has not been declared
 * @retval 125   the call failed
 * @retval 3000,99
 */
VL_EXPORT int vl_add_event(const char* event, unsigned int id, const char* server_name,
                           const char* releam);

/** Raises an event: counts it and keeps the data until the next raise.
 *
 * @param event   its name
 * @param data    what has happened; none stands for the data it was declared with
 * @param length  of the data in bytes
 * @retval 0     done
 * @retval 3011  no such event
 * @retval 4001  the data are larger than the server allows (1 MiB)
 * @retval 112   the call failed (logged), or bad data
 * @retval 3000,99
 */
VL_EXPORT int vl_send_event(const char* event, const void* data, int length,
                            const char* server_name, const char* releam);

/** Makes an event what it was when it was added: never raised.
 *
 * @param event  its name
 * @retval 0     done
 * @retval 3011  no such event
 * @retval 152   the call failed
 * @retval 3000  as everywhere; also when there is no reference to the server, where other
 *               functions give 99
 */
VL_EXPORT int vl_clear_event(const char* event, const char* server_name,
                             const char* releam);

/** How often an event was raised since it was added or cleared.
 *
 * @param event  its name
 * @param count  is what the server answers, whatever the result; a count that an int cannot
 *               hold is the largest int
 * @retval 0     done
 * @retval 3011  no such event
 * @retval 153   the call failed, or count is NULL
 * @retval 3000,99
 */
VL_EXPORT int vl_event_count(const char* event, int* count, const char* server_name,
                             const char* releam);

/* ------------------------------------------------ data template points */

/** Creates a point: a named value of the type that its template gives. It has the
 * template's initial value, or no data.
 *
 * @param point_name     its name, unique in the server and realm; not "$SYS/..."
 * @param template_name  "int8" ... "uint64", "float32", "float64", "bool", "text", "bytes",
 *                       or one of the server's configuration; see vl_get_query_data_type()
 * @retval 0     created
 * @retval 4     the name is too long, or the server's own
 * @retval 2014  there is a point of that name
 * @retval 3007  a name is empty
 * @retval 3008  the server holds no more points
 * @retval 4000  no such template
 * @retval 101   the call failed
 * @retval 3000,99
 */
VL_EXPORT int vl_create_data_template_point(const char* point_name,
                                            const char* template_name,
                                            const char* server_name, const char* releam);

/** Reads a point's value. A value longer than the buffer is cut without a sign, and the
 * length of a shorter one is not told: get_dtp_info2() tells it.
 *
 *     int32_t level;
 *     if (vl_get_data_template_point("level", &level, sizeof level, NULL, NULL) == VL_OK)
 *
 * @param point_name  its name
 * @param buffer      for the value; bytes beyond it are left alone
 * @param size        of the buffer in bytes. A negative one copies the whole value, however
 *                    long it is.
 * @retval 0     read, cut or not
 * @retval 2001  it has no data
 * @retval 4002  no such point
 * @retval 102   the call failed (logged), or buffer is NULL
 * @retval 3000,99
 */
VL_EXPORT int vl_get_data_template_point(const char* point_name, void* buffer, int size,
                                         const char* server_name, const char* releam);

/** Writes a point's value: the bytes as they are. By convention numbers are little-endian.
 *
 * @param point_name  its name
 * @param data        the value
 * @param size        of the value in bytes; may be 0 where the template lets it be
 * @retval 0     done
 * @retval 4     the point is the server's own
 * @retval 4001  the size is not the one of its template, or more than that or the server
 *               allows
 * @retval 4002  no such point
 * @retval 103   the call failed (logged), or bad data
 * @retval 3000,99
 */
VL_EXPORT int vl_set_data_template_point(const char* point_name, const void* data, int size,
                                         const char* server_name, const char* releam);

/** Removes a point.
 *
 * @param point_name  its name
 * @retval 0     done
 * @retval 4     the point is the server's own
 * @retval 4002  no such point
 * @retval 141   the call failed
 * @retval 3000,99
 */
VL_EXPORT int vl_remove_template_point(const char* point_name, const char* server_name,
                                       const char* releam);

/** Describes a point in free text.
 *
 * @param point_name   its name
 * @param description  up to 4096 bytes; "" brings the one of its template back
 * @retval 0     done
 * @retval 4     the text is too long, or the point is the server's own
 * @retval 4002  no such point
 * @retval 108   the call failed
 * @retval 3000,99
 */
VL_EXPORT int vl_set_data_template_point_description(const char* point_name,
                                                     const char* description,
                                                     const char* server_name,
                                                     const char* releam);

/** A point's free text.
 *
 * @param point_name  its name
 * @return to be freed with vl_string_free(); NULL on any failure, "" for a point that does
 *         not exist
 */
VL_EXPORT char* vl_get_data_template_point_description(const char* point_name,
                                                       const char* server_name,
                                                       const char* releam);

/** The name of a point's template. A failed call is logged.
 *
 * @param point_name  its name
 * @return to be freed with vl_string_free(); NULL on any failure, "" for a point that does
 *         not exist
 */
VL_EXPORT char* vl_get_data_template_point_type(const char* point_name,
                                                const char* server_name,
                                                const char* releam);

/** The names of all points, in byte order, but for the server's own.
 *
 * @param list  is filled whenever the server delivers names, whatever the result; free it
 *              as shown at NameList
 * @retval 0     done
 * @retval 145  the call failed (logged), or list is NULL. When memory ran out half-way,
 *              the list has a count and names of which the first ones are set.
 * @retval 3000,99
 */
VL_EXPORT int vl_get_all_point_name(NameList* list, const char* server_name,
                                    const char* releam);

/** The names of the points of one template, in byte order.
 *
 * @param list       as for vl_get_all_point_name()
 * @param type_name  a template's name, or "$SYS" for the server's own points
 * @retval 0     done
 * @retval 4000  no such template, nor a point of it
 * @retval 147   the call failed (logged), or list is NULL
 * @retval 3000,99
 */
VL_EXPORT int vl_get_all_point_by_typename(NameList* list, const char* type_name,
                                           const char* server_name, const char* releam);

/** The names of the points that hold no data, in byte order.
 *
 * @param list  as for vl_get_all_point_name()
 * @retval 0     done
 * @retval 146  the call failed, or list is NULL
 * @retval 3000,99
 */
VL_EXPORT int vl_check_null_data(NameList* list, const char* server_name,
                                 const char* releam);

/** The names of the templates, in byte order.
 *
 * @param list  is filled only when the result is 0; free it as shown at NameList
 * @retval 0     done
 * @retval 3006  there is none; not from velmod, which always has some
 * @retval 140   the call failed, or list is NULL
 * @retval 3000,99
 */
VL_EXPORT int vl_get_query_data_type(NameList* list, const char* server_name,
                                     const char* releam);

/** All about a point: its type, description and value.
 *
 *     char *type, *description;
 *     void* data = NULL; // to begin with
 *     while (...)
 *         if (get_dtp_info(name, &type, &description, &data, NULL, NULL) == VL_OK) {
 *             ...
 *             vl_string_free(type);
 *             vl_string_free(description);
 *         }
 *     vl_free_memory(&data);
 *
 * @param point_name  its name
 * @param text1       the type, to be freed with vl_string_free(); NULL on failure, but
 *                    untouched by 3000 and 99 and where a pointer is NULL
 * @param text2       the description, likewise
 * @param data        must hold NULL or a block of a call before, which a successful call
 *                    frees and replaces; the last one is to be freed with
 *                    vl_free_memory(data). A value of no bytes, and no data, have a block
 *                    as well. Untouched by any failure.
 * @retval 0     done
 * @retval 4002  no such point
 * @retval 150   the call failed (logged), or a pointer is NULL
 * @retval 3000,99
 */
VL_EXPORT int get_dtp_info(const char* point_name, char** text1, char** text2, void** data,
                           const char* server_name, const char* releam);

/** As get_dtp_info(), with the same codes and what it says of its parameters, and the
 * value's length.
 *
 * @param point_name  its name
 * @param text1       the type
 * @param text2       the description
 * @param data        the value
 * @param length      of the value in bytes; untouched by any failure
 */
VL_EXPORT int get_dtp_info2(const char* point_name, char** text1, char** text2, void** data,
                            unsigned int* length, const char* server_name,
                            const char* releam);

/** Creates a set of points of one template, all or none.
 *
 *     vl_create_set("motor", "float64", "speed\ntorque\n", 13, NULL, NULL);
 *     // there are "motor/speed" and "motor/torque"
 *
 * @param first_name   the set's name, to which the points' names are added after a "/"
 * @param second_name  the template's name
 * @param data         the points' names, one a line; the last line's end may be missing
 * @param size         of the names in bytes
 * @retval 0     all are created
 * @retval 4     a name is too long, has a NUL in it, or is the server's own
 * @retval 2014  there is a point of one of the names, or two lines are alike
 * @retval 3007  a name or a line is empty, or there is no line
 * @retval 3008  the server does not hold so many points
 * @retval 4000  no such template
 * @retval 142   the call failed (logged), or bad data
 * @retval 3000,99
 */
VL_EXPORT int vl_create_set(const char* first_name, const char* second_name,
                            const void* data, int size, const char* server_name,
                            const char* releam);

/* ----------------------------------------------------------- snapshots */

/** Saves the templates of a server and realm; they replace the ones saved before.
 *
 * @retval 0     saved; and also when no server is known, there is no reference to it or the
 *               call failed: only the server itself can report a failure
 * @retval 2022  the server keeps no snapshots, or could not write this one
 */
VL_EXPORT int vl_make_dt_snapshot(const char* server_name, const char* releam);

/** Does nothing: templates are loaded when a server starts (velmod --load). Contacts
 * nobody.
 *
 * @retval 0  always
 */
VL_EXPORT int vl_load_dt_snapshot(const char* server_name, const char* releam);

/** Saves the points of a server and realm as they are at one moment; they replace the ones
 * saved before. Others go on reading and writing meanwhile.
 *
 * @retval 0     saved, and safe on disk
 * @retval 2022  the server keeps no snapshots, or could not write this one; then the one
 *               before is still there
 * @retval 148   the call failed
 * @retval 3000,99
 */
VL_EXPORT int vl_make_dtp_snapshot(const char* server_name, const char* releam);

/** Replaces the points of a server and realm by those saved last, all or none.
 *
 * @retval 0     replaced; and also when the call failed
 * @retval 2001  none have been saved
 * @retval 2022  the server keeps no snapshots, or cannot use this one
 * @retval 3000,99
 */
VL_EXPORT int vl_load_dtp_snapshot(const char* server_name, const char* releam);

/** Saves the ports of a server and realm with their connections and queues as they are at
 * one moment, then the events likewise; they replace the ones saved before.
 *
 * @retval 0     saved, and safe on disk
 * @retval 2022  the server keeps no snapshots, or could not write this one; then the one
 *               before is still there
 * @retval 149   the call failed (the service is not looked up afresh)
 * @retval 3000,99
 */
VL_EXPORT int vl_make_port_snapshot(const char* server_name, const char* releam);

/** Does nothing: ports are loaded when a server starts (velmod --load). Contacts nobody.
 *
 * @retval 0  always
 */
VL_EXPORT int vl_load_port_snapshot(const char* server_name, const char* releam);

/* ---------------------------------------------------------- contention */

/** Registers a contender, or renews the standing of one that is registered and gives it new
 * data, role and priority. Of a group's contenders the one of the highest priority is
 * master, and among equals the one that registered first. A contender that does not renew
 * its standing within the lease (velmod: --lease, 10 s) is out.
 *
 * Who is master is told by points: "$SYS/contention/GROUP/state" has the epoch, which
 * rises with every change of master, and the master's name; ".../contenders/NAME/token"
 * exists only while that contender is master, and has its epoch. A master passes the epoch
 * along with its work, so that what an earlier one still sends can be told apart and
 * refused.
 *
 * @param group      the group's name
 * @param contender  its name in the group
 * @param data       what others may want to know of it. It goes to the server only when
 *                   data and role are both not NULL.
 * @param size       of the data in bytes; not looked at when they do not go
 * @param role       says what the data are, in the contenders' own words
 * @param priority   any int
 * @retval 0     it stands
 * @retval 4     a name or the role is too long
 * @retval 5     the server holds no more contenders or groups
 * @retval 3007  a name is empty
 * @retval 4001  the data are larger than the server allows (1 MiB)
 * @retval 155   the call failed, or bad data
 * @retval 3000,99
 */
VL_EXPORT int vl_regist_contender(const char* group, const char* contender,
                                  const void* data, int size, const char* role,
                                  int priority, const char* server_name,
                                  const char* releam);

/** Renews a contender's standing; a third of the lease is a good interval.
 *
 * @param group      as registered
 * @param contender  as registered
 * @param unused     is ignored
 * @retval 0     it stands
 * @retval 4     a name is too long
 * @retval 3007  a name is empty
 * @retval 4003  it does not stand any more, or never did: it has to register again, and if
 *               it was master it is not
 * @retval 156   the call failed
 * @retval 3000,99
 */
VL_EXPORT int vl_update_contender(const char* group, const char* contender,
                                  const char* unused, const char* server_name,
                                  const char* releam);

/** Withdraws a contender; the next one is master at once.
 *
 * @param group      as registered
 * @param contender  as registered
 * @param unused     is ignored
 * @retval 0     done
 * @retval 4     a name is too long
 * @retval 3007  a name is empty
 * @retval 4003  it does not stand any more, or never did
 * @retval 157   the call failed
 * @retval 3000,99
 */
VL_EXPORT int vl_out_contend(const char* group, const char* contender, const char* unused,
                             const char* server_name, const char* releam);

#ifdef __cplusplus
}
#endif

#endif
