/* Result codes of the Velmo client library. Plain C11 and C++17, self-contained. */
#ifndef VELMO_VL_RESULT_H
#define VELMO_VL_RESULT_H

/* Every named code, once: X(name, code). get_error_string() gives the text.
 * The spelling of a name is part of the interface and stays as it is. */
#define VL_RESULT_CODES(X)                                                                \
    X(VL_OK, 0)                                                                           \
    X(VL_FAIL, 2)                                                                         \
    X(NULL_OBJECT, 3)                                                                     \
    X(PARAMETER_ERROR, 4)                                                                 \
    X(MEMORY_ALLOCATION_FAI, 5)                                                           \
    X(ALREADY_EXIST_OBJECT, 6)                                                            \
    /* messaging: queues, ports, receivers, waits */                                      \
    X(TIME_OUT, 2000)                                                                     \
    X(NON_EXIST_DATA, 2001)                                                               \
    X(EMPTY_QUEUE, 2002)                                                                  \
    X(WOULD_BLOCK, 2003)                                                                  \
    X(ALREADY_CONNECTED, 2004)                                                            \
    X(NOT_CONNECTED, 2005)                                                                \
    X(RECEIVER_IS_NOT_READY, 2006)                                                        \
    X(INVAILD_PORT_HANDLE, 2007)                                                          \
    X(INVAILD_SINK_MODE, 2008)                                                            \
    X(RECEIVER_IS_NOT_EXIST, 2009)                                                        \
    X(ALL_SELECT_DISCONNECTED, 2010)                                                      \
    X(VL_MUTEX_RETURN, 2011)                                                              \
    X(PARAMETER_NOT_MATCH, 2012)                                                          \
    X(OBJECT_ALREADY_EXSIT, 2014)                                                         \
    X(MIDDLEWARE_NOT_CONNECTED, 2015)                                                     \
    X(REPLAY_TIMEOUT, 2016)                                                               \
    X(SENDMSG_TIMEOUT, 2017)                                                              \
    X(OBJECT_PATCH_FAI, 2022)                                                             \
    /* server names, naming, data types, registration */                                  \
    X(NULL_SERVER_NAME, 3000)                                                             \
    X(NAMING_SERVER_NOT_ONLINE, 3001)                                                     \
    X(HOST_IS_NOT_EXIST, 3002)                                                            \
    X(PROGRAM_IS_NOT_EXIST, 3003)                                                         \
    X(MODULE_NAME_IS_NOT_EXIST, 3004)                                                     \
    X(FAIL_TO_CREATE_DATA_TYPE, 3005)                                                     \
    X(TYPE_LIST_IS_NUL, 3006)                                                             \
    X(INVAILD_NULL_PARAMETER, 3007)                                                       \
    X(CREATE_DATAPOINT_FAI, 3008)                                                         \
    X(CONSUMER_IS_NUL, 3009)                                                              \
    X(RELEAM_IS_NUL, 3010)                                                                \
    X(EVENT_DECLARE_NUL, 3011)                                                            \
    X(NO_MATCH_EVENT_CODE, 3012)                                                          \
    X(FAIL_TO_REGISTER_SERVER, 3013)                                                      \
    X(MIDPLUSDATA_IS_BAD, 3014)                                                           \
    /* abstract data types, variables, contenders */                                      \
    X(ABSTRACT_DATA_TYPE_NULL, 4000)                                                      \
    X(SIZE_IS_NOT_MATCH, 4001)                                                            \
    X(VARIABLE_IS_NOT_EXIST, 4002)                                                        \
    X(CONTENDER_IS_NUL, 4003)

/* The block of codes that stand for a failed remote call: 99 when there is no
 * reference to the server, the others one or more per operation, so that the
 * code tells which call failed. All have the text of "SERVER_NOT_ONLINE". */
#define VL_REMOTE_FAILURE_FIRST 99
#define VL_REMOTE_FAILURE_LAST 169
#define VL_REMOTE_FAILURE_NAME "SERVER_NOT_ONLINE"

enum vl_result {
#define VL_RESULT_ENUMERATOR(name, code) name = code,
    VL_RESULT_CODES(VL_RESULT_ENUMERATOR)
#undef VL_RESULT_ENUMERATOR
    VL_NO_REFERENCE = VL_REMOTE_FAILURE_FIRST
};

#endif
