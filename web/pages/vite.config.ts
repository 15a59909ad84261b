// How the pages are built, and how they are served while somebody works on them.
import { defineConfig } from 'vitest/config';
import { gateway } from './dev/gateway';

export default defineConfig({
  // Relative addresses: the pages work wherever the web server puts them.
  base: './',
  esbuild: { jsx: 'automatic', jsxImportSource: 'preact' },
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
