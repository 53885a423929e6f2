/* Load client: CLIENTS threads, each with its own connection, read 2
 * holding registers at REGISTER again and again, one request in flight per
 * connection, and the latency of every request is noted.
 *   tcp: Modbus TCP through libmodbus (unit id SLAVE);
 *   rtu: Modbus RTU frames with CRC written on a plain TCP socket, as to a
 *        serial-to-Ethernet converter (libmodbus has no RTU over TCP).
 * Usage: modbus_load_client tcp|rtu ADDRESS PORT SLAVE REGISTER CLIENTS REQUESTS [WARMUP]
 * REQUESTS and WARMUP are per client; warm-up requests aren't counted.
 * Prints one line: requests, seconds, requests per second, median and 99th
 * percentile latency in microseconds, failures. */
#include <modbus.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

enum { registerCount = 2, rtuRequestSize = 8, rtuReplySize = 3 + 2 * registerCount + 2 };

static int rtu, port, slave, firstRegister, requests, warmup;
static char const* address;
static pthread_barrier_t ready;
static double* latencies; /* microseconds, requests per client each */
static int failures;
static pthread_mutex_t failuresLock = PTHREAD_MUTEX_INITIALIZER;

static double now(void)
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec + t.tv_nsec / 1e9;
}

static uint16_t crc16(uint8_t const* data, int size)
{
    uint16_t crc = 0xFFFF;
    for (int i = 0; i < size; ++i) {
        crc ^= data[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) ? (crc >> 1) ^ 0xA001 : crc >> 1;
    }
    return crc;
}

static int rtuConnect(void)
{
    int const fd = socket(AF_INET, SOCK_STREAM, 0);
    struct sockaddr_in to = {.sin_family = AF_INET, .sin_port = htons(port)};
    int const one = 1;
    if (fd < 0 || inet_pton(AF_INET, address, &to.sin_addr) != 1
        || setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one) != 0
        || connect(fd, (struct sockaddr*)&to, sizeof to) != 0)
        return -1;
    return fd;
}

/* One read of the registers; 0 when the reply is complete and its CRC right. */
static int rtuRead(int fd, uint8_t const* request)
{
    uint8_t reply[rtuReplySize];
    if (write(fd, request, rtuRequestSize) != rtuRequestSize)
        return -1;
    for (int got = 0; got < rtuReplySize;) {
        ssize_t const n = read(fd, reply + got, rtuReplySize - got);
        if (n <= 0)
            return -1;
        got += (int)n;
    }
    uint16_t const crc = crc16(reply, rtuReplySize - 2);
    return reply[0] == slave && reply[1] == 3 && reply[rtuReplySize - 2] == (crc & 0xFF)
                   && reply[rtuReplySize - 1] == (crc >> 8)
               ? 0
               : -1;
}

static void* client(void* argument)
{
    double* const mine = latencies + (intptr_t)argument * requests;
    modbus_t* ctx = NULL;
    int fd = -1;
    uint8_t request[rtuRequestSize] = {(uint8_t)slave, 3, (uint8_t)(firstRegister >> 8), (uint8_t)firstRegister, 0,
                                       registerCount};
    uint16_t const crc = crc16(request, 6);
    request[6] = crc & 0xFF;
    request[7] = crc >> 8;
    if (rtu) {
        fd = rtuConnect();
    } else {
        ctx = modbus_new_tcp(address, port);
        if (ctx && (modbus_set_slave(ctx, slave) != 0 || modbus_connect(ctx) != 0)) {
            modbus_free(ctx);
            ctx = NULL;
        }
    }
    int const connected = rtu ? fd >= 0 : ctx != NULL;
    uint16_t registers[registerCount];
    int failed = connected ? 0 : requests;
    for (int i = 0; connected && i < warmup; ++i) {
        if (rtu)
            rtuRead(fd, request);
        else
            modbus_read_registers(ctx, firstRegister, registerCount, registers);
    }
    pthread_barrier_wait(&ready);
    for (int i = 0; connected && i < requests; ++i) {
        double const start = now();
        int const ok = rtu ? rtuRead(fd, request) == 0
                           : modbus_read_registers(ctx, firstRegister, registerCount, registers) == registerCount;
        mine[i] = (now() - start) * 1e6;
        failed += !ok;
    }
    pthread_barrier_wait(&ready);
    if (ctx) {
        modbus_close(ctx);
        modbus_free(ctx);
    }
    if (fd >= 0)
        close(fd);
    pthread_mutex_lock(&failuresLock);
    failures += failed;
    pthread_mutex_unlock(&failuresLock);
    return NULL;
}

static int byValue(void const* left, void const* right)
{
    double const a = *(double const*)left, b = *(double const*)right;
    return (a > b) - (a < b);
}

int main(int argc, char** argv)
{
    if (argc < 8 || (strcmp(argv[1], "tcp") != 0 && strcmp(argv[1], "rtu") != 0)) {
        fprintf(stderr, "usage: %s tcp|rtu ADDRESS PORT SLAVE REGISTER CLIENTS REQUESTS [WARMUP]\n", argv[0]);
        return 2;
    }
    rtu = strcmp(argv[1], "rtu") == 0;
    address = argv[2];
    port = atoi(argv[3]);
    slave = atoi(argv[4]);
    firstRegister = (int)strtol(argv[5], NULL, 0);
    int const clients = atoi(argv[6]);
    requests = atoi(argv[7]);
    warmup = argc > 8 ? atoi(argv[8]) : requests / 10;
    if (clients < 1 || requests < 1)
        return 2;
    latencies = calloc((size_t)clients * requests, sizeof *latencies);
    pthread_t* const threads = calloc((size_t)clients, sizeof *threads);
    pthread_barrier_init(&ready, NULL, (unsigned)clients + 1);
    for (intptr_t i = 0; i < clients; ++i)
        pthread_create(&threads[i], NULL, client, (void*)i);
    pthread_barrier_wait(&ready);
    double const start = now();
    pthread_barrier_wait(&ready);
    double const seconds = now() - start;
    for (int i = 0; i < clients; ++i)
        pthread_join(threads[i], NULL);

    size_t const total = (size_t)clients * requests;
    qsort(latencies, total, sizeof *latencies, byValue);
    printf("requests %zu seconds %.3f rps %.0f median_us %.1f p99_us %.1f failures %d\n", total, seconds,
           total / seconds, latencies[total / 2], latencies[total * 99 / 100], failures);
    return failures == 0 ? 0 : 1;
}
