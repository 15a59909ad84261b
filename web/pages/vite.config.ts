// How the pages are built, and how they are served during development.
import { existsSync, readFileSync } from 'node:fs';
import { defineConfig } from 'vitest/config';

// The server of ./run --web: the gateway as on a controller, with its logins, locks and limits.
const target = process.env.GC_WEB_SERVER ?? 'http://127.0.0.1:8080';
// Host stays as the browser sent it: the gateway compares Origin with Host.
const behind = { target, changeOrigin: false };
const proxy = { '/api': behind, '/schemas': behind, '/openapi.json': behind };

/** The version of the project, which the pages are a part of. */
function version(): string {
  const project = new URL('../../CMakeLists.txt', import.meta.url);
  const text = existsSync(project) ? readFileSync(project, 'utf8') : '';
  return /project\(\w+ VERSION (\S+)/.exec(text)?.[1] ?? '0.0.0';
}

/** Octets of the longest body that the gateway accepts. */
function longestBody(): number {
  const file = new URL('../../docs/openapi.json', import.meta.url);
  const { components } = JSON.parse(readFileSync(file, 'utf8'));
  return components.responses.ContentTooLarge['x-octets'];
}

export default defineConfig({
  // Relative addresses: the pages work wherever the web server puts them.
  base: './',
  esbuild: { jsx: 'automatic', jsxImportSource: 'preact' },
  define: { __VERSION__: JSON.stringify(version()), __LONGEST_BODY__: String(longestBody()) },
  build: {
    outDir: '../../build/web/pages',
    emptyOutDir: true,
    target: 'es2021',
    // The content security policy allows neither inline scripts nor data: addresses.
    modulePreload: { polyfill: false },
    assetsInlineLimit: 0,
  },
  server: { fs: { allow: ['../..'] }, proxy },
  preview: { proxy, headers: { 'Content-Security-Policy': "default-src 'self'" } },
  // Generous, as a busy machine must not make a test fail.
  test: { include: ['tests/**/*.test.{ts,tsx}'], testTimeout: 60_000 },
});
