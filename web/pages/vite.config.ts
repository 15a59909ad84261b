// How the pages are built, and how they are served while somebody works on them.
import { existsSync, readFileSync } from 'node:fs';
import { defineConfig } from 'vitest/config';
import { gateway } from './dev/gateway';

/** The project's, which the pages are a part of. */
function version(): string {
  const project = new URL('../../CMakeLists.txt', import.meta.url);
  const text = existsSync(project) ? readFileSync(project, 'utf8') : '';
  return /project\(\w+ VERSION (\S+)/.exec(text)?.[1] ?? '0.0.0';
}

export default defineConfig({
  // Relative addresses: the pages work wherever the web server puts them.
  base: './',
  esbuild: { jsx: 'automatic', jsxImportSource: 'preact' },
  define: { __VERSION__: JSON.stringify(version()) },
  build: {
    outDir: '../../build/web/pages',
    emptyOutDir: true,
    target: 'es2021',
    // The content security policy allows neither inline scripts nor data: addresses.
    modulePreload: { polyfill: false },
    assetsInlineLimit: 0,
  },
  server: { fs: { allow: ['../..'] } },
  preview: { headers: { 'Content-Security-Policy': "default-src 'self'" } },
  plugins: [gateway()],
  // A busy machine is no fault of the pages.
  test: { include: ['tests/**/*.test.{ts,tsx}'], testTimeout: 60_000 },
});
