// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
int vendor_modem_send(unsigned int msg_id);
int vendor_modem_send(unsigned int msg_id) {
    return msg_id == 0 ? 0 : -1;
}
