/* The Velmo client library, C interface. Plain C11 and C++17.
 *
 * Rules that hold for every function unless it says otherwise
 *
 *   Result     an int of vl_result.h: 0 (VL_OK) is success; get_error_string()
 *              gives the text. A server's own result code comes back unchanged.
 *   Server     server_name NULL or "" means the first server at position "own"
 *              of the settings. releam names the realm; NULL or "" is the
 *              unnamed one.
 *   Common     3000  no server_name given and no default server known
 *   codes      99    the server is unknown to the settings, its naming service
 *                    does not answer, or it does not offer the service
 *              The code for a failed call (exception, time-out, connection
 *              lost) is given at each function; after it the next call looks
 *              the service up afresh.
 *   Strings    NUL-terminated, any bytes (UTF-8 passes unchanged). A NULL string
 *              that goes to the server arrives there as "". Nothing is kept.
 *   Data       a pointer and a length in bytes, copied before the function
 *              returns. NULL is allowed when the length is 0. A negative length,
 *              NULL with a positive length, and NULL where results are to go
 *              give the function's own failure code; no call is made.
 *   Memory     blocks that the library allocates are freed with
 *              vl_free_memory(&pointer); strings that it hands out (names,
 *              descriptions, types, texts) with vl_string_free() of vl_util.h.
 *   Blocking   until the server has answered, at most for the call time-out
 *              (call_timeout_ms, 30 s by default); the first call to a service,
 *              and the first after a failure, in addition asks the naming
 *              service (naming_timeout_ms, 2 s by default).
 *   Threads    any function from any thread at any time; calls of different
 *              threads run concurrently.
 *   Waiting    option of send, receive and reply: 0 does not wait, n waits up to
 *              n milliseconds, 0xFFFFFFFF as long as the server allows.
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

/* A list of names. The library allocates the array and the strings; free each
 * string with vl_string_free() and the array with vl_free_memory(). What the
 * record held before a call is overwritten, never freed. */
typedef struct NameList {
    unsigned int count;
    char** names;
} NameList;

/* One connection between two ports; both texts end in NUL. A first text of
 * more than 255 bytes runs on through the area of the second. */
typedef struct ConnectionBlock {
    char first_text[256];
    char second_text[256];
    struct ConnectionBlock* next;
} ConnectionBlock;

/* Head of a linked list of connections; free with vl_destory_connection_seq(). */
typedef struct ConnectionList {
    ConnectionBlock* first;
    int count;
} ConnectionList;

#define VL_SERVER_RECORD_NAMES 20

/* Names of the servers at one position. The strings belong to the library and
 * stay valid until the settings are read again or the process ends. */
typedef struct ServerRecord {
    int count;
    const char* names[VL_SERVER_RECORD_NAMES];
} ServerRecord;

/* ---------------------------------------------------------- middleware */

/* Tells whether the naming service of a server can be reached. Nothing is kept
 * open by it and no function needs it first.
 * Blocks at most for the naming time-out.
 * 0 reachable; 3000; 3001 its naming service does not answer. */
VL_EXPORT int vl_mid_connect(const char* server_name);

/* The same as vl_mid_connect(). */
VL_EXPORT int vl_mid_is_connect(const char* server_name);

/* Marks the end of the application's use of the middleware. Always 0 (2 when
 * the library's manager could not be created). Closes nothing: every function
 * keeps working afterwards. */
VL_EXPORT int vl_mid_disconnect(void);

/* The servers at a position: "parent", "own", "sibling", "child", "others",
 * "master" or "slave", in the order of the settings, at most 20; the slots
 * behind are NULL. count is 0 for any other word and for NULL. "own" always
 * has a server: "0000" when the settings name none. Reads the settings file
 * when it is the first use of the library; contacts nobody. */
VL_EXPORT ServerRecord vl_get_servername(const char* position);

/* The realms of a server. 0 fills the list; a server without a reachable
 * service manager has the one realm "ROOT", reported as success.
 * 137 the call failed (the list is then empty), or list is NULL; 3000. */
VL_EXPORT int vl_releam_seq(NameList* list, const char* server_name);

/* The text of a result code in the language of the user (VELMO_LANG, else the
 * locale; English otherwise), L"UNKNOWN_ERROR" for a code that has none. Never
 * NULL, never to be freed. Contacts nobody. printf("%ls") writes it in the
 * character set that setlocale() has chosen, and nothing where that has not its
 * letters: without setlocale() in languages other than English. */
VL_EXPORT const wchar_t* get_error_string(int code);

/* Frees *p and sets it to NULL. Harmless when p or *p is NULL. */
VL_EXPORT void vl_free_memory(void** p);

/* --------------------------------------------------------------- ports */

/* Creates a port: a named message end point with a queue.
 *   port      name, unique in the server and realm
 *   handle    any number but 0, chosen by the caller, unique as well; the
 *             functions below know the port by it
 *   capacity  packets that the queue holds, 0 for the server's default
 * 0 created; 2014 name or handle exists; 4 the name is too long or the handle
 * is 0; 3007 the name is empty; 112 the call failed; 109 it failed for a reason
 * outside the broker; 3000, 99. */
VL_EXPORT int vl_create_port(const char* port, unsigned int handle, unsigned int capacity,
                             const char* server_name, const char* releam);

/* Connects two ports by name; packets sent on the first then go to the second.
 *   mode   30001 plain; 30002 exclusive; 30004 plain, and this host's name is
 *          registered with the first port
 *   flags, remark  0 and "": reserved
 * 0 connected; 2004 the two are connected already, or one end is in a way that
 * mode 30002, of the old or of the new connection, excludes; 2007 no port named
 * from; 2009 no port named to; 2008 unknown mode; 112 the call failed; 110 it
 * failed for a reason outside the broker; 2 the library's manager could not be
 * created; 3000, 99. That the host's registration (mode 30004) fails on its way
 * after a successful connection still gives 0. */
VL_EXPORT int vl_connect_port(const char* from, const char* to, unsigned int mode,
                              unsigned int flags, const char* remark,
                              const char* server_name, const char* releam);

/* Ends every connection of a port. Packets already queued stay.
 * 0; 2005 it had none; 2007 no such handle; 112 the call failed; 111 it failed
 * for a reason outside the broker; 3000, 99. */
VL_EXPORT int vl_disconenct_port(unsigned int port, const char* server_name,
                                 const char* releam);

/* The connections of a server as (from, to), in the order of connecting. The
 * list is emptied first, whatever follows. Free with
 * vl_destory_connection_seq(). 151 the call failed or list is NULL; 3000, 99. */
VL_EXPORT int vl_get_connection_info(ConnectionList* list, const char* server_name,
                                     const char* releam);

/* Frees the blocks of a list and sets count to 0; first then points at freed
 * memory. Does nothing to a list whose count is 0 or less, or to NULL. */
VL_EXPORT void vl_destory_connection_seq(ConnectionList* list);

/* Names of the ports with an outgoing connection, followed by those with an
 * incoming one. The list is emptied first, whatever follows.
 * 143 the call failed or list is NULL; 3000, 99. */
VL_EXPORT int vl_com_chennal_seq(NameList* list, const char* server_name,
                                 const char* releam);

/* Chooses how a port with several receivers delivers: enable 1 (the default)
 * gives each its own copy, 0 gives each packet to one of them in turn.
 * 2007 no port named object; 4 another value of enable; 112 the call failed;
 * 3000, 99. */
VL_EXPORT int enableCopy(const char* object, unsigned int enable, const char* server_name,
                         const char* releam);

/* ------------------------------------------------------------- packets */

/* Sends a packet on a port: to every port connected from it, or into its own
 * queue when there is none.
 * 0 queued; 2003 a queue is full (option 0); 2017 still full after the wait;
 * 4001 the packet is larger than a queue can hold; 2007 no such handle; 112 the call failed or the data are bad; 3000, 99. */
VL_EXPORT int vl_send_packet(unsigned int port, const void* data, int length,
                             unsigned int option, const char* server_name,
                             const char* releam);

/* As vl_send_packet(), to the head of the queue. Failure code 154. */
VL_EXPORT int vl_send_packet_to_front(unsigned int port, const void* data, int length,
                                      unsigned int option, const char* server_name,
                                      const char* releam);

/* Takes the oldest packet of a port into a buffer of exactly its length.
 *   from    NULL, or the handle of the only sender wanted, as a pointer value
 *   buffer  receives size bytes
 * 0 received; 2002 the queue is empty (option 0); 2000 still empty after the
 * wait; 2012 the packet's length is not size (nothing is copied, and the packet
 * is gone: use vl_receive_packetv() when lengths vary); 2007 no such handle;
 * 123 the call failed or buffer is NULL; 3000, 99. */
VL_EXPORT int vl_receive_packet(unsigned int port, void* from, void* buffer,
                                unsigned int size, unsigned int option,
                                const char* server_name, const char* releam);

/* Takes the oldest packet of a port into a new block: *data and *length, to be
 * freed with vl_free_memory(data). An empty packet gives a block as well. When
 * the server reports an error or the call fails, *data is NULL and *length 0.
 * Codes as vl_receive_packet() but 2012; 123 also when data or length is NULL.
 *
 *     void* data;
 *     unsigned int length;
 *     int code = vl_receive_packetv(port, NULL, &data, &length, 1000, NULL, NULL);
 *     if (code == VL_OK) {
 *         use(data, length);
 *         vl_free_memory(&data);
 *     }
 */
VL_EXPORT int vl_receive_packetv(unsigned int port, void* from, void** data,
                                 unsigned int* length, unsigned int option,
                                 const char* server_name, const char* releam);

/* Answers the oldest packet that was received on this port and not answered
 * yet; the reply waits at the port that sent the packet.
 * 0 queued; 2001 no packet waits for an answer; 2003 and 2017 the sender holds
 * too many replies, without and after a wait; 4001 the reply is larger than it
 * can hold; 2007 no such handle; 124 the call failed or the data are
 * bad; 3000, 99. */
VL_EXPORT int vl_reply_packet(unsigned int port, const void* data, int length,
                              unsigned int option, const char* server_name,
                              const char* releam);

/* Takes the oldest reply into a buffer of exactly its length.
 * Codes as vl_receive_reply2(), and 2012 the reply's length is not size. */
VL_EXPORT int vl_receive_reply(unsigned int port, void* buffer, unsigned int size,
                               unsigned int option, const char* server_name,
                               const char* releam);

/* Takes the oldest reply to a packet sent on this port into a new block: *data
 * and *length, to be freed with vl_free_memory(data). On failure both stay as
 * they were.
 * 0 received; 2016 no answer has come after the wait; without a wait (option 0)
 * 2001 nothing sent on this port waits for an answer, 2002 it does but has not
 * come; 2007 no such handle; 127 the call failed or data or length is NULL; 3000, 99. */
VL_EXPORT int vl_receive_reply2(unsigned int port, void** data, unsigned int* length,
                                unsigned int option, const char* server_name,
                                const char* releam);

/* -------------------------------------------------------------- events */

/* Declares an event by number, with the data that it carries by default.
 * 126 the call failed or the data are bad; 3000, 99. */
VL_EXPORT int vl_declare_event(unsigned int id, const void* data, int length,
                               const char* server_name, const char* releam);

/* Adds an event under a name for a declared number.
 * 3012 the number is not declared; 125 the call failed; 3000, 99. */
VL_EXPORT int vl_add_event(const char* event, unsigned int id, const char* server_name,
                           const char* releam);

/* Raises an event with data. 112 the call failed or the data are bad; 3000, 99. */
VL_EXPORT int vl_send_event(const char* event, const void* data, int length,
                            const char* server_name, const char* releam);

/* Clears an event. 3011 nothing was declared; 152 the call failed; 3000 also
 * when there is no reference to the server, where other functions give 99. */
VL_EXPORT int vl_clear_event(const char* event, const char* server_name,
                             const char* releam);

/* How often an event was raised, into *count.
 * 153 the call failed or count is NULL; 3000, 99. */
VL_EXPORT int vl_event_count(const char* event, int* count, const char* server_name,
                             const char* releam);

/* ------------------------------------------------ data template points */

/* Creates a point from a template. 101 the call failed; 3000, 99. */
VL_EXPORT int vl_create_data_template_point(const char* point_name,
                                            const char* template_name,
                                            const char* server_name, const char* releam);

/* Reads a point's value: the smaller of its length and size bytes go to buffer,
 * and the result is 0 in either case. A negative size copies the whole value.
 * 102 the call failed or buffer is NULL; 3000, 99. */
VL_EXPORT int vl_get_data_template_point(const char* point_name, void* buffer, int size,
                                         const char* server_name, const char* releam);

/* Writes a point's value. 103 the call failed or the data are bad; 3000, 99. */
VL_EXPORT int vl_set_data_template_point(const char* point_name, const void* data, int size,
                                         const char* server_name, const char* releam);

/* Removes a point. 141 the call failed; 3000, 99. */
VL_EXPORT int vl_remove_template_point(const char* point_name, const char* server_name,
                                       const char* releam);

/* Sets a point's free text. 108 the call failed; 3000, 99. */
VL_EXPORT int vl_set_data_template_point_description(const char* point_name,
                                                     const char* description,
                                                     const char* server_name,
                                                     const char* releam);

/* A point's free text, to be freed with vl_string_free(); NULL on any failure. */
VL_EXPORT char* vl_get_data_template_point_description(const char* point_name,
                                                       const char* server_name,
                                                       const char* releam);

/* The name of a point's template, to be freed with vl_string_free(); NULL on
 * any failure. */
VL_EXPORT char* vl_get_data_template_point_type(const char* point_name,
                                                const char* server_name,
                                                const char* releam);

/* The names of all points; filled whenever the server delivers names, whatever
 * the result. 145 the call failed or list is NULL; 3000, 99. */
VL_EXPORT int vl_get_all_point_name(NameList* list, const char* server_name,
                                    const char* releam);

/* The names of the points of one type, filled likewise.
 * 147 the call failed or list is NULL; 3000, 99. */
VL_EXPORT int vl_get_all_point_by_typename(NameList* list, const char* type_name,
                                           const char* server_name, const char* releam);

/* The names of the points that hold no data, filled likewise.
 * 146 the call failed or list is NULL; 3000, 99. */
VL_EXPORT int vl_check_null_data(NameList* list, const char* server_name,
                                 const char* releam);

/* The names of the data templates; filled only when the result is 0.
 * 140 the call failed or list is NULL; 3000, 99. */
VL_EXPORT int vl_get_query_data_type(NameList* list, const char* server_name,
                                     const char* releam);

/* A point's type, description and value. *text1 and *text2 are NULL on failure,
 * otherwise to be freed with vl_string_free(). *data must be NULL or a block of
 * an earlier call, which a successful call frees; free the last one with
 * vl_free_memory(). 150 the call failed or a pointer is NULL; 3000, 99. */
VL_EXPORT int get_dtp_info(const char* point_name, char** text1, char** text2, void** data,
                           const char* server_name, const char* releam);

/* As get_dtp_info(), with the value's length. */
VL_EXPORT int get_dtp_info2(const char* point_name, char** text1, char** text2, void** data,
                            unsigned int* length, const char* server_name,
                            const char* releam);

/* Creates a set of points of one template from one block of data.
 * 142 the call failed or the data are bad; 3000, 99. */
VL_EXPORT int vl_create_set(const char* first_name, const char* second_name,
                            const void* data, int size, const char* server_name,
                            const char* releam);

/* ----------------------------------------------------------- snapshots */

/* Saves the server's data templates. Always 0 unless the server itself reports
 * an error: neither a missing server nor a failed call shows in the result. */
VL_EXPORT int vl_make_dt_snapshot(const char* server_name, const char* releam);

/* Does nothing and returns 0. */
VL_EXPORT int vl_load_dt_snapshot(const char* server_name, const char* releam);

/* Saves the server's points. 148 the call failed; 3000, 99. */
VL_EXPORT int vl_make_dtp_snapshot(const char* server_name, const char* releam);

/* Restores the server's points. A failed call gives 0 as well; 3000, 99. */
VL_EXPORT int vl_load_dtp_snapshot(const char* server_name, const char* releam);

/* Saves the server's ports. 149 the call failed; 3000, 99. */
VL_EXPORT int vl_make_port_snapshot(const char* server_name, const char* releam);

/* Does nothing and returns 0. */
VL_EXPORT int vl_load_port_snapshot(const char* server_name, const char* releam);

/* ---------------------------------------------------------- contention */

/* Registers a contender for a role. The data go to the server only when data
 * and role are both given. 155 the call failed or the data are bad; 3000, 99. */
VL_EXPORT int vl_regist_contender(const char* group, const char* contender,
                                  const void* data, int size, const char* role,
                                  int priority, const char* server_name,
                                  const char* releam);

/* Renews a contender's standing; unused is ignored. 156 the call failed; 3000, 99. */
VL_EXPORT int vl_update_contender(const char* group, const char* contender,
                                  const char* unused, const char* server_name,
                                  const char* releam);

/* Withdraws a contender; unused is ignored. 157 the call failed; 3000, 99. */
VL_EXPORT int vl_out_contend(const char* group, const char* contender, const char* unused,
                             const char* server_name, const char* releam);

#ifdef __cplusplus
}
#endif

#endif
