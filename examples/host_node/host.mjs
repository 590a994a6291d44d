#!/usr/bin/env node
// A host in JavaScript (Node.js 16 or later, no packages): it runs `ispctl run --json` and reads the events.
//
//   node host.mjs /opt/scaler-isp/bin/ispctl --virtual -- --isp --fw "$PWD/monitor.bin"
//
// The library runs in a process of its own, so the event loop is not blocked while a chip is programmed, and
// a plug-in that crashes does not end this process.

import { spawn } from 'node:child_process';
import { createInterface } from 'node:readline';

// Calls onProgress(percent) and onMessage(text), and resolves to the last event, `result`: status, code,
// meaning, advice. ispctl-events.schema.json, among the pages, describes all events.
export function runScaler(ispctl, args, { onProgress, onMessage }) {
    return new Promise((resolve, reject) => {
        const child = spawn(ispctl, ['run', '--json', ...args], { stdio: ['ignore', 'pipe', 'inherit'] });
        let result = null;
        const lines = createInterface({ input: child.stdout });
        lines.on('line', (line) => {
            const event = JSON.parse(line);
            switch (event.event) {
                case 'progress':
                    onProgress(event.percent);
                    break;
                case 'message':
                    onMessage(event.text);
                    break;
                case 'result':
                    result = event;
                    break;
                default: // "console": what the library and its plug-ins print
            }
        });
        child.on('error', reject); // ispctl cannot be started
        lines.on('close', () => {
            if (result !== null) {
                resolve(result);
            }
        });
        child.on('close', (status) => {
            if (result === null) {
                reject(new Error(`ispctl ended with ${status} and without a result`));
            }
        });
    });
}

const [ispctl, ...args] = process.argv.slice(2);
if (ispctl === undefined) {
    console.error('usage: host.mjs ISPCTL [OPTIONS OF RUN] ARGS...');
    process.exit(1);
}
try {
    const result = await runScaler(ispctl, args, {
        onProgress: (percent) => console.error(`progress ${percent} %`),
        onMessage: (text) => console.error(`message: ${text.replace(/\n$/, '')}`),
    });
    console.error(`result ${result.hex ?? 'none'}: ${result.meaning}`);
    process.exitCode = result.status === 0 ? 0 : 1;
} catch (error) {
    console.error(error.message);
    process.exitCode = 1;
}
