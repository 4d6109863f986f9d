// What the tests of pages share: where things are, and the browser.
import {createRequire} from 'node:module';
import {join} from 'node:path';
import {pathToFileURL} from 'node:url';

export const root = new URL('../../', import.meta.url).pathname;
export const modules = process.env.MODULES ?? join(root, 'build/node/');

const {chromium} = createRequire(pathToFileURL(join(modules, '/')))('playwright-core');

export const launchBrowser = () => chromium.launch({ignoreDefaultArgs: ['--hide-scrollbars'],
  executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium', args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
    '--disable-background-networking', '--disable-component-update', '--disable-sync']});
