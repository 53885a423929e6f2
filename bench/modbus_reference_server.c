/* Reference Modbus TCP server built on Debian's libmodbus, outside the
 * project: holding registers from a plain mapping, any number of clients
 * served from one select() loop.
 * Usage: modbus_reference_server ADDRESS PORT
 * Registers 0x100 and 0x101 hold the words 0x0000 0x41BC (the float 23.5,
 * low word first), as the simulated chambers answer them. */
#include <modbus.h>

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    if (argc != 3) {
        fprintf(stderr, "usage: %s ADDRESS PORT\n", argv[0]);
        return 2;
    }
    modbus_t* const ctx = modbus_new_tcp(argv[1], atoi(argv[2]));
    modbus_mapping_t* const map = ctx ? modbus_mapping_new(0, 0, 0x200, 0) : NULL;
    if (!map) {
        fprintf(stderr, "setup failed: %s\n", modbus_strerror(errno));
        return 1;
    }
    map->tab_registers[0x100] = 0x0000;
    map->tab_registers[0x101] = 0x41BC;
    int const listener = modbus_tcp_listen(ctx, 32);
    if (listener < 0) {
        fprintf(stderr, "listen failed: %s\n", modbus_strerror(errno));
        return 1;
    }
    printf("listening\n");
    fflush(stdout);

    fd_set all;
    FD_ZERO(&all);
    FD_SET(listener, &all);
    int highest = listener;
    uint8_t query[MODBUS_TCP_MAX_ADU_LENGTH];
    for (;;) {
        fd_set readable = all;
        if (select(highest + 1, &readable, NULL, NULL, NULL) < 0) {
            if (errno == EINTR)
                continue;
            perror("select");
            return 1;
        }
        for (int fd = 0; fd <= highest; ++fd) {
            if (!FD_ISSET(fd, &readable))
                continue;
            if (fd == listener) {
                int const client = accept(listener, NULL, NULL);
                if (client < 0 || client >= FD_SETSIZE) {
                    if (client >= 0)
                        close(client);
                    continue;
                }
                FD_SET(client, &all);
                if (client > highest)
                    highest = client;
                continue;
            }
            modbus_set_socket(ctx, fd);
            int const size = modbus_receive(ctx, query);
            if (size > 0) {
                modbus_reply(ctx, query, size, map);
            } else if (size < 0) {
                close(fd);
                FD_CLR(fd, &all);
            }
        }
    }
}
